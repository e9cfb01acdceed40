#!/usr/bin/env bash
# Makes build/endpin_VERSION_arm64.deb on a machine of another kind, and runs the core's tests and
# both programs in emulation. No foreign package is installed here: what the programs link against
# is unpacked into build/sysroot-arm64.
set -euo pipefail
cd "$(dirname "$0")/.."
source packaging/lib.sh

export ENDPIN_SYSROOT=$PWD/build/sysroot-arm64
dir=build/package-arm64

# The -dev packages, as the build of this machine has them, and what the tests need.
sysroot_packages=(
  libc6-dev libstdc++-12-dev
  libkissfft-dev libcubeb-dev libsoxr-dev libsndfile1-dev libpulse-dev libsqlite3-dev
  libfmt-dev libcli11-dev nlohmann-json3-dev libgtest-dev libbenchmark-dev
  qt6-base-dev qt6-declarative-dev
)

make_sysroot() {
  say "Unpacking Debian's arm64 packages"
  as_root rm -rf "$ENDPIN_SYSROOT.part"
  as_root mmdebstrap --variant=extract --architectures=arm64 --skip=cleanup/apt \
    --include="$(IFS=,; echo "${sysroot_packages[*]}")" \
    --extract-hook='packaging/sysroot.sh "$1"' \
    bookworm "$ENDPIN_SYSROOT.part"
  as_root rm -rf "$ENDPIN_SYSROOT"
  as_root mv "$ENDPIN_SYSROOT.part" "$ENDPIN_SYSROOT"
  echo "${sysroot_packages[*]}" | as_root tee "$ENDPIN_SYSROOT/packages" >/dev/null
}

# Made once, and again when the list has changed.
[ "$(cat "$ENDPIN_SYSROOT/packages" 2>/dev/null)" = "${sysroot_packages[*]}" ] || make_sysroot
configure "$dir" arm64 -DCMAKE_TOOLCHAIN_FILE=packaging/arm64-toolchain.cmake
tests=(pitch-estimator-test listener-test tuner-test calibration-test app-test)
cmake --build "$dir" --target endpin_package_files "${tests[@]}"
ctest --test-dir "$dir" --output-on-failure -R "^($(IFS='|'; echo "${tests[*]}"))\$"

# dpkg-shlibdeps, run by cpack, finds the libraries and their versions in the sysroot.
make_deb "$dir"
packaging/check.sh "$deb"
say "$deb: $(du -h "$deb" | cut -f1)"
