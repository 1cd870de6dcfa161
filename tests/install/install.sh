#!/bin/bash
# What a build installs serves a C11 and a C++20 program, through the CMake
# package and through pkg-config, wherever the tree is moved.
# usage: install.sh BUILD-FOLDER CC CXX toolchain=[FILE] [EMULATOR...]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
build=$1 cc=$2 cxx=$3 toolchain=${4#toolchain=}
shift 4
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

cmake --install "$build" --prefix "$scratch/first" >/dev/null
mv "$scratch/first" "$scratch/moved"
prefix=$scratch/moved

expect_result() {
  local printed
  printed=$("$@")
  [ "$printed" = 'Resampler 0.99169921875 0.9918212890625' ] || {
    echo "$* printed: $printed" >&2
    exit 1
  }
}

cmake -S "$here/consumer" -B "$scratch/cmake" -DCMAKE_PREFIX_PATH="$prefix" \
  ${toolchain:+-DCMAKE_TOOLCHAIN_FILE="$toolchain"} >"$scratch/log" || { cat "$scratch/log" >&2 && exit 1; }
cmake --build "$scratch/cmake" >>"$scratch/log" 2>&1 || { cat "$scratch/log" >&2 && exit 1; }
expect_result "$@" "$scratch/cmake/consumer_c"
expect_result "$@" "$scratch/cmake/consumer_cpp"

pc=$(dirname "$(find "$prefix" -name mavokresampler.pc)")
flags=$(PKG_CONFIG_LIBDIR=$pc pkg-config --cflags --libs mavokresampler)
libdir=$(PKG_CONFIG_LIBDIR=$pc pkg-config --variable=libdir mavokresampler)
# shellcheck disable=SC2086
{
  "$cc" -std=c11 "$here/consumer/consumer.c" -o "$scratch/c" $flags -Wl,-rpath,"$libdir"
  "$cxx" -std=c++20 "$here/consumer/consumer.cpp" -o "$scratch/cpp" $flags -Wl,-rpath,"$libdir"
}
expect_result "$@" "$scratch/c"
expect_result "$@" "$scratch/cpp"
