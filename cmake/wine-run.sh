#!/bin/sh
# Runs a Windows program under Wine with a private, quiet prefix. The first caller creates the
# prefix under a lock so that tests started in parallel do not race on it. wineboot writes the
# registry files long before it is done, so a marker of our own says the prefix is ready.
: "${WINEPREFIX:=${HOME:-/tmp}/.qor_lang2-wine}"
export WINEPREFIX
export WINEDEBUG="${WINEDEBUG:--all}"
# No Mono or Gecko: nothing we run needs them, and their installers would prompt.
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-mscoree,mshtml=}"
ready="$WINEPREFIX.ready"
if [ ! -f "$ready" ]; then
  mkdir -p "$(dirname "$WINEPREFIX")"
  (
    flock 9
    if [ ! -f "$ready" ]; then
      wineboot --init >/dev/null 2>&1
      wineserver -w
      touch "$ready"
    fi
  ) 9>"$WINEPREFIX.lock"
fi
exec wine "$@"
