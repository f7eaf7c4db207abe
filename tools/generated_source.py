"""Checks a generated, checked-in C++ source against what its generator makes now, or writes it.

Shared by the table generators (gen_language_tables.py, gen_plural_rules.py, gen_default_countries.py):
--check must fail with a readable diff when the data moved on, and a plain run must write the file byte
for byte.
"""

import difflib
import os
import sys


def check_or_write(output, text, check, generator, summary):
    """With `check`: 0 when `output` holds `text`, else 1 and the start of a diff on stderr.
    Without: writes `text` to `output` (ASCII, LF line ends). `summary` ends the message line."""
    output = os.path.normpath(output)
    if check:
        try:
            with open(output, encoding="ascii", newline="") as f:
                current = f.read()
        except (OSError, UnicodeDecodeError) as error:
            print("cannot read %s: %s" % (output, error), file=sys.stderr)
            return 1
        if current != text:
            print("%s is out of date; run %s" % (output, generator), file=sys.stderr)
            diff = difflib.unified_diff(current.splitlines(), text.splitlines(), "checked in", "generated", lineterm="")
            for line in list(diff)[:40]:
                print(line, file=sys.stderr)
            return 1
        print("%s is up to date (%s)" % (output, summary))
        return 0

    with open(output, "w", encoding="ascii", newline="\n") as f:
        f.write(text)
    print("wrote %s (%s)" % (output, summary))
    return 0
