#!/usr/bin/env bash
# Installs, with apt-get, whatever the build and the tests need and this Debian 12 machine lacks,
# and unpacks TinyXML-2's Debian source for the Windows build. Needs root only when something is
# missing; a second run changes nothing and downloads nothing.
set -euo pipefail

# --example: only what building the library and the example host needs.
if [ "${1:-}" = "--example" ]; then
  example=1
  packages=(cmake ninja-build g++ libtinyxml2-dev)
else
example=0
packages=(
  cmake                         # build system (>= 3.25)
  ninja-build                   # build tool used by the presets
  g++                           # native compiler
  libgtest-dev libgmock-dev     # unit tests natively; its sources (/usr/src/googletest) for the cross build
  libbenchmark-dev              # benchmarks under bench/
  libtinyxml2-dev               # TinyXML-2: the XML value store and qorlang's XLIFF and Qt TS formats
  dpkg-dev                      # dpkg-source: unpacks TinyXML-2's source package for the Windows build
  g++-mingw-w64-x86-64-posix    # Windows x64 cross compiler (posix threads)
  wine wine64                   # runs the Windows tests and example
  python3 iso-codes             # table generators' up-to-date checks (optional tests)
  unicode-cldr-core             # CLDR plural rules, likely subtags: plural and default-country tables' checks (optional tests)
  clang libfuzzer-14-dev        # fuzz targets (linux-fuzz preset): clang 14 with libFuzzer
  libclang-rt-14-dev            # clang's sanitizer and libFuzzer runtimes
  gettext                       # xgettext/msginit/msgmerge: qorlang extract, init, merge; msgfmt/msgunfmt in the tests
  qttools5-dev-tools            # lconvert: the same catalogue as TS and XLIFF (optional tests)
  pkg-config                    # the install check builds a C application through pkg-config
  clang-format                  # tools/check_format.sh: the layout in .clang-format, checked in CI
  gcovr                         # tools/coverage.sh: line and branch coverage of src/
)
fi

# Debian builds TinyXML-2 for Linux only; the Windows build compiles the same source package
# (tinyxml2.cpp and tinyxml2.h with Debian's patches) from here. The mingw configure finds it
# through QOR_TINYXML2_SOURCE_DIR, whose default this is.
tinyxml2_dir=/usr/local/src/tinyxml2

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done

need_root() {
  if [ "$(id -u)" -ne 0 ]; then
    echo "missing: $* (run as root to install them)" >&2
    exit 1
  fi
}

if [ ${#missing[@]} -gt 0 ]; then
  need_root "packages ${missing[*]}"
  echo "installing: ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -qq
  apt-get install -y -qq "${missing[@]}" >/dev/null
fi
[ "$example" = 0 ] || exit 0

# The source of the very version the Linux build links, so that both builds parse and print alike.
version=$(dpkg-query -W -f='${source:Version}' libtinyxml2-dev)
if [ -f "$tinyxml2_dir/tinyxml2.cpp" ] &&
   [ "$(dpkg-parsechangelog -l "$tinyxml2_dir/debian/changelog" -S Version 2>/dev/null)" = "$version" ]; then
  exit 0
fi
need_root "TinyXML-2 $version source in $tinyxml2_dir"
echo "fetching: TinyXML-2 $version source into $tinyxml2_dir"

# A deb-src entry for this fetch only, in a private apt state: the machine's sources and package
# lists stay as they are. It names the mirror, suite and component that serve the installed
# binary package. apt checks the mirror's signed InRelease against Debian's archive keyring and
# every file against the checksums that chain from it; dpkg-source checks them again.
origin=$(apt-cache madison libtinyxml2-dev | awk -F' [|] ' -v v="$version" '$2 == v && $3 ~ / Packages$/ {print $3; exit}')
if [ -z "$origin" ]; then
  apt-get update -qq
  origin=$(apt-cache madison libtinyxml2-dev | awk -F' [|] ' -v v="$version" '$2 == v && $3 ~ / Packages$/ {print $3; exit}')
fi
[ -n "$origin" ] || { echo "no Debian mirror offers libtinyxml2-dev $version" >&2; exit 1; }
read -r uri suite_component _ <<<"$origin"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
chmod 755 "$work"
mkdir -p "$work/sources.list.d" "$work/lists/partial" "$work/cache/archives/partial" "$work/download"
cat >"$work/tinyxml2-src.sources" <<SOURCES
Types: deb-src
URIs: $uri
Suites: ${suite_component%%/*}
Components: ${suite_component#*/}
Signed-By: /usr/share/keyrings/debian-archive-keyring.gpg
SOURCES
# apt downloads as its unprivileged user _apt.
chown _apt "$work/download"
apt_private=(-o "Dir::Etc::SourceList=$work/tinyxml2-src.sources" -o "Dir::Etc::SourceParts=$work/sources.list.d"
             -o "Dir::State::Lists=$work/lists" -o "Dir::Cache=$work/cache")
apt-get -qq "${apt_private[@]}" update
(cd "$work/download" && apt-get -qq "${apt_private[@]}" source --download-only "tinyxml2=$version" >/dev/null)
# Without debian-keyring the uploader's signature cannot be checked (a warning); the checksums are.
dpkg-source -x "$work/download"/tinyxml2_*.dsc "$work/unpacked" >"$work/unpack.log" 2>&1 ||
  { cat "$work/unpack.log" >&2; exit 1; }
rm -rf "$tinyxml2_dir"
mkdir -p "$(dirname "$tinyxml2_dir")"
mv "$work/unpacked" "$tinyxml2_dir"
