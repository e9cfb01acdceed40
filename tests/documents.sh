#!/usr/bin/env bash
# Every path and every command that a document names exists.
set -euo pipefail
cd "$(dirname "$0")/.."
failed=0
complain() { echo "$1: $2"; failed=1; }

for document in README.md CONTRIBUTING.md ports/README.md $(git ls-files 'docs/*.md' 'packaging/*.md' 'web/*.md'); do
  folder=$(dirname "$document")
  # Paths: words with a slash in backticks, and the targets of links; build/ is made, not kept, and web/HOSTING.md names media types.
  while read -r path; do
    [ -e "$path" ] || [ -e "$folder/$path" ] || complain "$document" "there is no $path"
  done < <(grep -oE '`[A-Za-z0-9_.-]+/[A-Za-z0-9_./-]*`|\]\([A-Za-z0-9_./-]+\)' "$document" |
    tr -d '`()]' | grep -vE '^(build|~|application|font|text)/|^https?:' | sort -u)
  while read -r command; do
    grep -q "^cmd_$command()" dev || complain "$document" "./dev has no command $command"
  done < <(grep -oE '\./dev [a-z]+' "$document" | cut -d' ' -f2 | sort -u)
done
exit $failed
