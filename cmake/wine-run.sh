#!/bin/sh
# Runs a Windows program under Wine with a private, quiet prefix. The first caller creates the
# prefix under a lock so that tests started in parallel do not race on it.
: "${WINEPREFIX:=${HOME:-/tmp}/.qor_lang2-wine}"
export WINEPREFIX
export WINEDEBUG="${WINEDEBUG:--all}"
# No Mono or Gecko: nothing we run needs them, and their installers would prompt.
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-mscoree,mshtml=}"
if [ ! -f "$WINEPREFIX/system.reg" ]; then
  mkdir -p "$(dirname "$WINEPREFIX")"
  (
    flock 9
    if [ ! -f "$WINEPREFIX/system.reg" ]; then
      wineboot --init >/dev/null 2>&1
      wineserver -w
    fi
  ) 9>"$WINEPREFIX.lock"
fi
exec wine "$@"
