# shellcheck shell=bash
# Steps that package.sh and arm64.sh share. The working folder is the root of the project.

say() { printf '%s\n' "$*" >&2; }

as_root() {
  if [ "$(id -u)" = 0 ]; then "$@"; else sudo "$@"; fi
}

# configure DIR ARCHITECTURE [CMAKE-OPTION...]: with Debian's hardening flags, every one of them. The
# optimisation is the release build's own, as the benchmarks measured it; the package is stripped.
configure() {
  local dir=$1 architecture=$2
  shift 2
  local flags="dpkg-buildflags --get"
  export DEB_HOST_ARCH=$architecture DEB_BUILD_MAINT_OPTIONS=hardening=+all
  export DEB_CXXFLAGS_MAINT_STRIP="-g -O2"
  cmake -S . -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr \
    -DCMAKE_CXX_FLAGS="$($flags CXXFLAGS) $($flags CPPFLAGS)" \
    -DCMAKE_EXE_LINKER_FLAGS="$($flags LDFLAGS) -Wl,--as-needed" "$@" >&2
}

# make_deb DIR [CPACK-OPTION...]: packs what is built in DIR. $deb is the package afterwards, in the
# folder above DIR.
make_deb() {
  local dir=$1
  shift
  rm -rf "$dir/cpack" "$(dirname "$dir")"/endpin_*_"$DEB_HOST_ARCH".deb
  cpack --config "$dir/CPackConfig.cmake" -B "$dir/cpack" "$@" >&2
  deb=$(dirname "$dir")/$(basename "$dir"/cpack/*.deb)
  mv "$dir"/cpack/*.deb "$deb"
}
