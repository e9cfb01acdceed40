#!/usr/bin/env bash
# install-test.sh PACKAGE.deb BUILD-DIR: installs the package as apt does, without what it only
# recommends, into a Debian system that has nothing but apt; runs its programs there; removes it.
# A package for arm64 is unpacked beside what it depends on instead, and its programs run in
# emulation: the package manager of such a system would have to run itself.
# Needs root, mmdebstrap, netpbm, qemu-user-static for arm64, and Debian's packages. Leaves nothing behind.
set -euo pipefail
deb=$(realpath "$1")
build=$(realpath "$2")
run=$(dirname "$(realpath "$0")")/run-in-root.sh
architecture=$(dpkg-deb -f "$deb" Architecture)

depends() { dpkg-deb -f "$deb" Depends | sed 's/([^)]*)//g; s/|[^,]*//g; s/ //g'; }

if [ "$architecture" = "$(dpkg --print-architecture)" ]; then
  packages=(--variant=apt
    --customize-hook="upload '$deb' /tmp/endpin.deb"
    --customize-hook='chroot "$1" apt-get install -y -q --no-install-recommends /tmp/endpin.deb'
    --customize-hook='chroot "$1" dpkg --verify endpin'
    --customize-hook="'$run' \"\$1\" '$build'"
    --customize-hook='chroot "$1" apt-get purge -y -q endpin'
    --customize-hook='! find "$1/usr" "$1/etc" -ipath "*endpin*" | grep .')
else
  packages=(--variant=extract --include="$(depends)"
    --setup-hook='mkdir "$1/proc"'
    --extract-hook="dpkg-deb -x '$deb' \"\$1\""
    # What the package of the font settings asks for when it is set up.
    --extract-hook='ln -s /usr/share/fontconfig/conf.avail/10-hinting-slight.conf "$1/etc/fonts/conf.d/"'
    --extract-hook='cp /usr/bin/qemu-aarch64-static "$1/qemu"'
    --extract-hook="'$run' \"\$1\" '$build' /qemu")
fi
mmdebstrap --architectures="$architecture" "${packages[@]}" bookworm /dev/null
echo "$(basename "$deb"): installed and ran"
