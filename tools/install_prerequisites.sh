#!/usr/bin/env bash
# Installs, with apt-get, whatever the build and the tests need and this Debian 12 machine lacks.
# Needs root only when something is missing.
set -euo pipefail

# --example: only what building the library and the example host needs.
if [ "${1:-}" = "--example" ]; then
  packages=(cmake ninja-build g++)
else
packages=(
  cmake                         # build system (>= 3.25)
  ninja-build                   # build tool used by the presets
  g++                           # native compiler
  libgtest-dev libgmock-dev     # unit tests natively; its sources (/usr/src/googletest) for the cross build
  libbenchmark-dev              # benchmarks under bench/
  libtinyxml2-dev               # TinyXML-2: the XML value store and qorlang's XLIFF and Qt TS formats (native builds only)
  g++-mingw-w64-x86-64-posix    # Windows x64 cross compiler (posix threads)
  wine wine64                   # runs the Windows tests and example
  python3 iso-codes             # table generators' up-to-date checks (optional tests)
  clang libfuzzer-14-dev        # fuzz targets (linux-fuzz preset): clang 14 with libFuzzer
  libclang-rt-14-dev            # clang's sanitizer and libFuzzer runtimes
  gettext                       # msgfmt/msgunfmt: qorlang's comparison with gettext (optional tests)
  qttools5-dev-tools            # lconvert: the same catalogue as TS and XLIFF (optional tests)
  pkg-config                    # the install check builds a C application through pkg-config
)
fi

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi
if [ "$(id -u)" -ne 0 ]; then
  echo "missing packages: ${missing[*]} (run as root to install them)" >&2
  exit 1
fi
echo "installing: ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
apt-get update -qq
apt-get install -y -qq "${missing[@]}" >/dev/null
