#!/usr/bin/env bash
# check.sh PACKAGE.deb: what Debian's own checkers say about a package, and whether its programs are
# hardened. Ends with an error when there is one.
set -euo pipefail
deb=$(realpath "$1")
tree=$(mktemp -d)
trap 'rm -rf "$tree"' EXIT
dpkg-deb -x "$deb" "$tree"

desktop-file-validate "$tree"/usr/share/applications/*.desktop
appstreamcli validate --no-net "$tree"/usr/share/metainfo/*.metainfo.xml
lintian --allow-root --fail-on error,warning "$deb"

# hardened PROGRAM: one line and an error for each protection that it lacks.
hardened() {
  local headers symbols failed=0
  headers=$(readelf -Wlhd "$1")
  symbols=$(readelf -W --dyn-syms "$1")
  grep -qE 'Type: +DYN' <<<"$headers" || { echo "$1: not position independent"; failed=1; }
  grep -q GNU_RELRO <<<"$headers" || { echo "$1: relocations stay writable"; failed=1; }
  grep -qE 'FLAGS.*\bNOW\b' <<<"$headers" || { echo "$1: symbols are bound late"; failed=1; }
  grep -qE 'GNU_STACK .* RW ' <<<"$headers" || { echo "$1: the stack is executable"; failed=1; }
  grep -q __stack_chk_fail <<<"$symbols" || { echo "$1: no stack protector"; failed=1; }
  grep -qE '__[a-z]+_chk' <<<"${symbols//__stack_chk_fail/}" || { echo "$1: not fortified"; failed=1; }
  return $failed
}
for program in "$tree"/usr/bin/*; do hardened "$program"; done
echo "$(basename "$deb"): programs hardened"
