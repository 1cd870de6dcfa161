#!/bin/bash
# The Debian packages, unpacked into an empty tree, say what they need, serve programs
# without the build folder, and bring a program that finds its library.
# usage: packages.sh BUILD-FOLDER CC CXX VERSION NEEDED...
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
source "$here/serve.sh"
build=$1 cc=$2 cxx=$3 version=$4
shift 4
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
mkdir "$scratch/packages" "$scratch/root"

fail() {
  echo "$1" >&2
  exit 1
}

cpack --config "$build/CPackConfig.cmake" -B "$scratch/packages" >"$scratch/log" 2>&1 ||
  { cat "$scratch/log" >&2 && exit 1; }
deb() { echo "$scratch/packages/$1_${version}"_*.deb; }

files=0
for package in libmavokresampler libmavokresampler-dev mavokresampler-tools; do
  file=$(deb $package)
  [ -f "$file" ] || fail "there is no package $package of version $version"
  [[ $(dpkg-deb -f "$file" Maintainer) == 'Mavok developers <'*'>' ]] || fail "$package: another maintainer"
  [ "$(dpkg-deb -f "$file" Architecture)" = "$(dpkg --print-architecture)" ] || fail "$package: another architecture"
  [ "$(dpkg-deb -f "$file" Description | wc -l)" -gt 1 ] || fail "$package: no description"
  dpkg-deb -x "$file" "$scratch/root"
  [ -f "$scratch/root/usr/share/doc/$package/copyright" ] || fail "$package: no copyright"
  gzip -t "$scratch/root/usr/share/doc/$package/changelog.gz" || fail "$package: no changelog"
  ((files += $(dpkg-deb -c "$file" | grep -vc '/$')))
done
[ "$files" -eq "$(find "$scratch/root" -type f | wc -l)" ] || fail 'a file is in two packages'

# needs PACKAGE NAME [RELATION]
needs() {
  local depends
  depends=", $(dpkg-deb -f "$(deb "$1")" Depends),"
  [[ $depends == *", $2 (${3-}"* || $depends == *", $2,"* && -z ${3-} ]] ||
    fail "$1 doesn't depend on $2${3+ ($3}: $depends"
}
for library in "$@" libc6; do needs libmavokresampler "$library"; done
for library in libsndfile1 libstdc++6; do needs mavokresampler-tools "$library"; done
for package in libmavokresampler-dev mavokresampler-tools; do needs $package libmavokresampler "= $version)"; done
[[ $(dpkg-deb -I "$(deb libmavokresampler)" postinst) == *ldconfig* ]] || fail "the loader isn't told of the library"

root=$scratch/root/usr
grep -rlF -e "$build" -e "$scratch" "$root" && fail 'files above name the build folder'
expect_service "$root" "$cc" "$cxx" '' "$scratch"
[ "$("$root/bin/mvk" --version)" = "mvk $version" ] || fail 'mvk has another version'
"$root/bin/mvk" info | grep -q AudioResampler || fail "mvk doesn't find its library"
gzip -t "$root/share/man/man1/mvk.1.gz" || fail 'no manual'
bash -c 'source "$1" && complete -p mvk' - "$root/share/bash-completion/completions/mvk" >/dev/null

pc=$(dirname "$(find "$root" -name mavokresampler.pc)")
for example in "$root"/share/doc/libmavokresampler-dev/examples/*.c; do
  # shellcheck disable=SC2046
  "$cc" -std=c11 -Wall -Wextra -Werror "$example" -o "$scratch/example" \
    $(PKG_CONFIG_LIBDIR=$pc pkg-config --cflags --libs mavokresampler) -lm
done
