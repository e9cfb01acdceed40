#!/usr/bin/env bash
# site.sh WEB NATIVE SITE: puts everything that the page consists of into the folder SITE, from the
# sources and from the two build folders. This is the one list of its files: a script or a style sheet
# that lies here is part of the page.
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

put . index.html ./*.css ./*.mjs ./*.js manifest.webmanifest HOSTING.md \
  "$web"/endpin-core.wasm "$web"/endpin-tone.wasm
# What the about panel shows.
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$native/CMakeCache.txt")
sed -i "s/@version@/${version:?}/" "$site/index.html"
put texts ../resources/texts/Localizable/*.json
put resources "$native"/resources/beep-full.mp3
put pictures ../resources/pictures/*.svg ../resources/pictures/icons/*.svg \
  "$native"/resources/pictures/drawings/*.svg

mkdir "$site/fonts" "$site/icons"
./fonts.py ../resources/texts/Localizable "$site/fonts"

# icon SIZE NAME: a picture of the application, read from the input, for the system's home screen.
icon() { rsvg-convert -w "$1" -h "$1" -o "$site/icons/$2"; }
icon 192 endpin-192.png <../resources/pictures/endpin.svg
icon 512 endpin-512.png <../resources/pictures/endpin.svg
# Systems that cut the picture into a shape of their own get one without corners and edge, the cello
# within the inner circle of four fifths that all of them leave.
uncut=$(sed -e 's/ rx="112"//' -e '/<rect x="3"/d' \
  -e 's/translate(116.0 -256) scale(0.7)/translate(132 -203) scale(0.62)/' \
  ../resources/pictures/endpin.svg)
icon 512 endpin-maskable-512.png <<<"$uncut"
icon 180 endpin-touch-180.png <<<"$uncut"

put licences "$web"/sources/kissfft/LICENSES/BSD-3-Clause \
  "$web"/sources/libsoxr/COPYING.LGPL licences.txt
cp ../LICENSE "$site/licences/endpin.txt"
cp "$web"/sources/kissfft/COPYING "$site/licences/kissfft.txt"
cp "$web"/sources/libsoxr/LICENCE "$site/licences/soxr.txt"
cp /usr/share/doc/libfmt-dev/copyright "$site/licences/fmt.txt"
cp /usr/share/doc/libc++-14-dev-wasm32/copyright "$site/licences/libc++.txt"
cp /usr/share/doc/wasi-libc/copyright "$site/licences/wasi-libc.txt"

cp /usr/share/doc/fonts-lato/copyright "$site/licences/lato.txt"
cp /usr/share/doc/fonts-sil-gentiumplus/copyright "$site/licences/gentium.txt"

./version.sh "$site"
chmod -R u=rwX,go=rX "$site"
