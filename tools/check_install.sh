#!/usr/bin/env bash
# Installs a finished build into a temporary prefix, moves the prefix elsewhere (the package must
# not depend on where it was installed), and builds and runs two applications from outside the
# source tree against it: tests/package/cmake_consumer through find_package(qor_lang2 CONFIG),
# with qorlang_add_translations and the C++ layer, and tests/package/pkgconfig_consumer, plain C
# through pkg-config, with a language file from the installed qorlang. For the mingw build both
# are cross-compiled and run under Wine. Prints one summary line; fails on the first problem.
#
#   tools/check_install.sh [linux-release | mingw]     (the preset whose build is installed)
set -euo pipefail
cd "$(dirname "$0")/.."
source_dir=$PWD
preset=${1:-linux-release}
build=$source_dir/build/$preset
[ -f "$build/CMakeCache.txt" ] || { echo "install: FAILED: no build in $build" >&2; exit 1; }

work=$(mktemp -d)
[ -n "${QOR_KEEP_WORK:-}" ] || trap 'rm -rf "$work"' EXIT
fail() { echo "install: FAILED: $*" >&2; exit 1; }
# Runs a command, showing its output only when it fails.
quiet() { "$@" >"$work/step.log" 2>&1 || { cat "$work/step.log" >&2; return 1; }; }

quiet cmake --install "$build" --prefix "$work/installed" || fail "cmake --install"
mv "$work/installed" "$work/prefix"
prefix=$work/prefix

pc=$(find "$prefix" -name qor_lang2.pc -path '*/pkgconfig/*')
[ -n "$pc" ] || fail "no qor_lang2.pc"
libdir=$(dirname "$(dirname "$pc")")
package=$libdir/cmake/qor_lang2
if [ "$preset" = mingw ]; then
  exe=.exe
  cc=x86_64-w64-mingw32-gcc-posix
  run=("$source_dir/cmake/wine-run.sh")
  cmake_args=(-DCMAKE_TOOLCHAIN_FILE="$source_dir/cmake/mingw-w64-x86_64.cmake" -Dqor_lang2_DIR="$package"
              -DCMAKE_EXE_LINKER_FLAGS=-static)
  library=$prefix/bin/qor_lang2.dll
  expected=(bin/qor_lang2.dll "${libdir#"$prefix"/}/qor_lang2.dll.a")
  path() { echo "Z:${1//\//\\}"; }   # the Wine drive that maps the Linux root
else
  exe=
  cc=cc
  run=()
  cmake_args=(-DCMAKE_PREFIX_PATH="$prefix")
  library=$libdir/libqor_lang2.so
  expected=("${libdir#"$prefix"/}/libqor_lang2.so.0")
  path() { echo "$1"; }
fi

for file in include/qor_lang2.h include/qor_lang2.hpp "bin/qorlang$exe" "${expected[@]}" \
            "${package#"$prefix"/}/qor_lang2Config.cmake" "${package#"$prefix"/}/qor_lang2ConfigVersion.cmake"; do
  [ -f "$prefix/$file" ] || fail "$file is not installed"
done
# Tools that the build made must be installed too.
if [ -n "$(find "$build" -maxdepth 3 -type f -name "kore_json$exe" -print -quit)" ]; then
  [ -f "$prefix/bin/kore_json$exe" ] || fail "bin/kore_json$exe is not installed"
fi
if [ "$preset" = mingw ]; then
  detail="qor_lang2.dll with its import library"
else
  soname=$(objdump -p "$library" | awk '$1 == "SONAME" {print $2}')
  [ "$soname" = libqor_lang2.so.0 ] || fail "SONAME is '$soname', not libqor_lang2.so.0"
  detail="SONAME $soname"
fi

# 1. CMake: configure, build (translations included) and run.
quiet cmake -S "$source_dir/tests/package/cmake_consumer" -B "$work/cmake" -G Ninja -DCMAKE_BUILD_TYPE=Release \
  "${cmake_args[@]}" || fail "the find_package consumer does not configure"
quiet cmake --build "$work/cmake" || fail "the find_package consumer does not build"
[ "$preset" != mingw ] || cp "$library" "$work/cmake/"
quiet "${run[@]}" "$work/cmake/cmake_consumer$exe" "$(path "$work/cmake/lang")" || fail "the find_package consumer failed"

# 2. pkg-config: plain C, a language file from the installed compiler.
export PKG_CONFIG_PATH=$libdir/pkgconfig
mkdir "$work/c"
quiet "${run[@]}" "$prefix/bin/qorlang$exe" compile "$source_dir/tests/package/cmake_consumer/lang/de-DE.txt" \
  -o "$work/c/consumer-de-DE.qorlang" --app-id consumer --language de-DE || fail "the installed qorlang cannot compile"
# shellcheck disable=SC2046  # pkg-config's output is a list of words
quiet "$cc" -std=c11 -Wall -Wextra -Werror -pedantic "$source_dir/tests/package/pkgconfig_consumer/main.c" \
  $(pkg-config --cflags --libs qor_lang2) -o "$work/c/c_consumer$exe" || fail "the pkg-config consumer does not build"
[ "$preset" != mingw ] || cp "$library" "$work/c/"
LD_LIBRARY_PATH=$(pkg-config --variable=libdir qor_lang2) quiet "${run[@]}" "$work/c/c_consumer$exe" "$(path "$work/c")" \
  || fail "the pkg-config consumer failed"

files=$(find "$prefix" -type f | wc -l)
echo "install: $files files, $detail, find_package consumer passed, pkg-config consumer passed"
