#!/bin/bash
# What a build installs serves a C11 and a C++20 program, through the CMake
# package and through pkg-config, wherever the tree is moved.
# usage: install.sh BUILD-FOLDER CC CXX toolchain=[FILE] [EMULATOR...]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
source "$here/serve.sh"
build=$1 cc=$2 cxx=$3 toolchain=${4#toolchain=}
shift 4
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

cmake --install "$build" --prefix "$scratch/first" >/dev/null
mv "$scratch/first" "$scratch/moved"
expect_service "$scratch/moved" "$cc" "$cxx" "$toolchain" "$scratch" "$@"
