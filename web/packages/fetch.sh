#!/usr/bin/env bash
# fetch.sh FOLDER: the sources of the libraries that the module is made of, from the machine's own
# Debian archive, into FOLDER. The machine's lists stay as they are. What comes must be what the
# checksums below say; a new version in the archive wants new ones, and the tests run again.
set -euo pipefail
mkdir -p "$1"
cd "$1"

packages=(kissfft=131.1.0-4.1~deb12u1 libsoxr=0.1.3-4)
checksums='
76c1aac87ddb7258f34b08a13f0eebf9e53afa299857568346aa5c82bcafaf1a  kissfft_131.1.0.orig.tar.gz
bf7fe2596084b0a8b7e0486d9947cfd3216c4dac37924f266524ffae1de107e9  kissfft_131.1.0-4.1~deb12u1.debian.tar.xz
b111c15fdc8c029989330ff559184198c161100a59312f5dc19ddeb9b5a15889  libsoxr_0.1.3.orig.tar.xz
ae691692ccee841407c2fc7ebb2f25908ccd0adb256cf55944c71325cef14e71  libsoxr_0.1.3-4.debian.tar.xz
'
mark=$(sha256sum <<<"$checksums")
[ "$(cat fetched 2>/dev/null)" != "$mark" ] || exit 0

# The archives that the machine trusts already, asked for sources instead of programs.
rm -rf apt ./*.dsc ./*.tar.* kissfft libsoxr
mkdir -p apt/parts apt/lists/partial
apt-get indextargets --format 'deb-src $(REPO_URI) $(RELEASE) $(COMPONENT)' \
  'Origin: Debian' 'Created-By: Packages' | sort -u >apt/parts/sources.list
options=(-q -o Dir::Etc::sourcelist=/dev/null -o "Dir::Etc::sourceparts=$PWD/apt/parts"
  -o "Dir::State::lists=$PWD/apt/lists" -o APT::Sandbox::User=root)
apt-get "${options[@]}" update
apt-get "${options[@]}" source --download-only "${packages[@]}"

sha256sum --check --quiet <<<"${checksums#?}"
for name in kissfft libsoxr; do
  dpkg-source --no-check --extract "$name"_*.dsc "$name"
done
rm -rf apt
echo "$mark" >fetched
