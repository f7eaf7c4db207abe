#!/bin/sh
# Makes this folder's files again from de-DE.po: the TS and XLIFF inputs with Qt's lconvert
# (qttools5-dev-tools), the expected bytes with a Linux qorlang. Run it after a change that is
# meant to alter what qorlang writes, then check the difference before committing it.
#
#   tests/tools/qorlang/byte_identity/regenerate.sh [QORLANG]   (default build/linux-release/tools/qorlang)
set -eu
here=$(cd "$(dirname "$0")" && pwd)
qorlang=$(realpath "${1:-$here/../../../../build/linux-release/tools/qorlang}")
cd "$here"
lconvert -i de-DE.po -o de-DE.ts
lconvert -i de-DE.po -o de-DE.xlf
"$qorlang" compile de-DE.ts -o app-de-DE.qorlang
"$qorlang" decompile app-de-DE.qorlang -o decompiled.ts
"$qorlang" decompile app-de-DE.qorlang -o decompiled.xlf
