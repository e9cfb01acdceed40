#!/usr/bin/env bash
# site.sh WEB NATIVE SITE: puts everything that the page consists of into the folder SITE, from the
# sources and from the two build folders. This is the one list of its files.
set -euo pipefail
web=$1 native=$2 site=$3
cd "$(dirname "$0")"

mkdir -p "$site"
find "$site" -mindepth 1 -delete # the folder itself stays: somebody may be serving it

# put PLACE FILE...: into that folder of the site.
put() {
  mkdir -p "$site/$1"
  cp "${@:2}" "$site/$1"
}

put . index.html page.mjs core.mjs capture-worklet.js tone-worklet.js \
  "$web"/endpin-core.wasm "$web"/endpin-tone.wasm
put texts ../resources/texts/Localizable/*.json
put resources "$native"/resources/beep-full.mp3
put pictures ../resources/pictures/*.svg ../resources/pictures/icons/*.svg \
  "$native"/resources/pictures/drawings/*.svg

put licences "$web"/sources/kissfft/LICENSES/BSD-3-Clause \
  "$web"/sources/libsoxr/COPYING.LGPL licences.txt
cp ../LICENSE "$site/licences/endpin.txt"
cp "$web"/sources/kissfft/COPYING "$site/licences/kissfft.txt"
cp "$web"/sources/libsoxr/LICENCE "$site/licences/soxr.txt"
cp /usr/share/doc/libfmt-dev/copyright "$site/licences/fmt.txt"
cp /usr/share/doc/libc++-14-dev-wasm32/copyright "$site/licences/libc++.txt"
cp /usr/share/doc/wasi-libc/copyright "$site/licences/wasi-libc.txt"

chmod -R u=rwX,go=rX "$site"
