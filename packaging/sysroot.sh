#!/usr/bin/env bash
# sysroot.sh SYSROOT: makes a root of unpacked packages fit to link against from outside.
set -euo pipefail
cd "$1"

# Links are meant from the root of the other system.
find . -type l -lname '/*' -print0 | while IFS= read -r -d '' link; do
  ln -sfn --relative ".$(readlink "$link")" "$link"
done

# Which package a library belongs to, and from which version on: taken from every package, put where
# dpkg-shlibdeps looks for the libraries of a package that is just being built.
mkdir DEBIAN
for deb in var/cache/apt/archives/*.deb; do
  for table in symbols shlibs; do
    dpkg-deb --info "$deb" "$table" 2>/dev/null >>"DEBIAN/$table" || true
  done
done
rm -rf var/cache/apt/archives var/lib/apt/lists
