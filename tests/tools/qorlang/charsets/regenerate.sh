#!/bin/sh
# Remakes the charset fixtures from real catalogues of a Debian machine, three of them shipped in
# that charset (Czech gettext-tools, Hebrew diffutils, Japanese psmisc) and Russian sed: the first
# entries with non-ASCII text, as UTF-8 (<lang>.utf8.po) and converted by gettext's msgconv into
# the charset (<lang>.po).
set -e
cd "$(dirname "$0")"
make_pair() { # language domain charset python-codec
    msgunfmt "/usr/share/locale/$1/LC_MESSAGES/$2.mo" | msgconv --to-code=UTF-8 | python3 -c '
import sys, re
blocks = sys.stdin.read().split("\n\n")
keep = [blocks[0]]
for block in blocks[1:]:
    if "msgid_plural" in block or not re.search(r"[^\x00-\x7f]", block):
        continue
    try:
        block.encode(sys.argv[1])  # entries the charset can hold
    except UnicodeEncodeError:
        continue
    keep.append(block.strip("\n"))
    if len(keep) == 7:
        break
print("\n\n".join(keep))' "$4" > "$1.utf8.po"
    msgconv --to-code="$3" "$1.utf8.po" -o "$1.po"
}
make_pair cs gettext-tools ISO-8859-2 iso8859_2
make_pair he diffutils ISO-8859-8 iso8859_8
make_pair ja psmisc EUC-JP euc_jp
make_pair ru sed KOI8-R koi8_r
