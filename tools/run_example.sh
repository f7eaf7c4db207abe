#!/usr/bin/env bash
# Installs what is missing, builds the library and the example host, and runs the host against
# the sample language files (English, German, French, Japanese) compiled during the build.
set -euo pipefail
cd "$(dirname "$0")/.."

tools/install_prerequisites.sh --example
cmake --preset example >/dev/null
cmake --build --preset example >/dev/null
exec build/example/examples/qor_lang2_demo build/example/examples/lang build/example/examples/help
