# To be sourced: what an installed tree has to do for programs.

# expect_result COMMAND...: it prints what the consumers should.
expect_result() {
  local printed
  printed=$("$@")
  [ "$printed" = 'Resampler 0.99169921875 0.9918212890625' ] || {
    echo "$* printed: $printed" >&2
    exit 1
  }
}

# expect_service PREFIX CC CXX TOOLCHAIN-FILE SCRATCH [EMULATOR...]: a C11 and a C++20 program
# are built with the tree through the CMake package and through pkg-config, and run.
expect_service() {
  local prefix=$1 cc=$2 cxx=$3 toolchain=$4 scratch=$5
  local consumer pc flags libdir
  consumer=$(dirname "${BASH_SOURCE[0]}")/consumer
  shift 5

  cmake -S "$consumer" -B "$scratch/cmake" -DCMAKE_PREFIX_PATH="$prefix" \
    ${toolchain:+-DCMAKE_TOOLCHAIN_FILE="$toolchain"} >"$scratch/log" || { cat "$scratch/log" >&2 && exit 1; }
  cmake --build "$scratch/cmake" >>"$scratch/log" 2>&1 || { cat "$scratch/log" >&2 && exit 1; }
  expect_result "$@" "$scratch/cmake/consumer_c"
  expect_result "$@" "$scratch/cmake/consumer_cpp"

  pc=$(dirname "$(find "$prefix" -name mavokresampler.pc)")
  flags=$(PKG_CONFIG_LIBDIR=$pc pkg-config --cflags --libs mavokresampler)
  libdir=$(PKG_CONFIG_LIBDIR=$pc pkg-config --variable=libdir mavokresampler)
  # shellcheck disable=SC2086
  {
    "$cc" -std=c11 "$consumer/consumer.c" -o "$scratch/c" $flags -Wl,-rpath,"$libdir"
    "$cxx" -std=c++20 "$consumer/consumer.cpp" -o "$scratch/cpp" $flags -Wl,-rpath,"$libdir"
  }
  expect_result "$@" "$scratch/c"
  expect_result "$@" "$scratch/cpp"
}
