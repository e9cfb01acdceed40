#!/usr/bin/env bash
# version.sh SITE: writes SITE/service-worker.js, with the list of the files that a browser keeps and
# a version made from their contents. Refuses a site that is too heavy for a phone.
set -euo pipefail
source=$(realpath "$(dirname "$0")/service-worker.js")
limit=400000 # bytes over the wire, for the first visit
cd "$1"

# Not kept: what only the system asks for, or a reader who has read the list of licences.
mapfile -t files < <(find . -type f -not -path './icons/*' \
  '(' -not -path './licences/*' -o -name licences.txt ')' -not -name '*.md' \
  -not -name service-worker.js -printf '%P\n' | LC_ALL=C sort)

list() {
  local file sum
  for file in "${files[@]}"; do
    sum=$(sha256sum "$file")
    printf '  ["%s", "%s"],\n' "${file/#index.html/./}" "${sum:0:16}"
  done
}

entries=$(list)
version=$(sha256sum <<<"$entries")
{
  printf 'const VERSION = "%s";\nconst FILES = new Map([\n%s\n]);\n\n' "${version:0:16}" "$entries"
  cat "$source"
} >service-worker.js

bytes=0
for file in "${files[@]}" service-worker.js; do
  bytes=$((bytes + $(gzip -9c "$file" | wc -c)))
done
echo "Version ${version:0:16}, ${#files[@]} files, $((bytes / 1000)) KB compressed"
[ $bytes -le $limit ] || { echo "version.sh: more than $((limit / 1000)) KB" >&2; exit 1; }
