#!/usr/bin/env bash
# Makes build/endpin_VERSION_amd64.deb and the screenshots that its metainfo names, and checks them.
# `./dev package` installs what this needs.
set -euo pipefail
cd "$(dirname "$0")/.."
source packaging/lib.sh

dir=build/package
configure "$dir" amd64
cmake --build "$dir" --target endpin_package_files
make_deb "$dir"

say "Screenshots"
mkdir -p "$dir/screenshots"
# shot NAME OPTION...: what the metainfo shows as NAME.png.
shot() {
  local name=$1
  shift
  QT_QPA_PLATFORM=offscreen LC_ALL=C.UTF-8 "$dir/endpin" --device phone:844 \
    --screenshot "$dir/screenshots/$name.png" "$@"
}
cmake --build "$dir" --target endpin_four_strings
shot tuned --input "$dir/resources/four-strings.flac" --after 2.6
shot settings --panel settings
shot fork --panel fork

packaging/check.sh "$deb"
say "$deb: $(du -h "$deb" | cut -f1)"
