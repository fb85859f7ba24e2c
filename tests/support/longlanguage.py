"""Makes a language whose texts are 40 % longer than the English ones and wider: longlanguage.py ENGLISH LONG.

What the program inserts and the identifiers stay as they are.
"""

import itertools
import pathlib
import re
import sys

WIDE = str.maketrans("aeiouAEIOU", "ÄËŴÖÜÄËŴÖÜ")
FILLING = "ЩЖŴ漢MЮ語"


def longer(text):
    """The text in wide letters, with words of filling behind it; its markers, and the blank before it, are kept."""
    wide = "".join(part if part.startswith("%") else part.translate(WIDE) for part in re.split(r"(%s2?)", text))
    letters = itertools.cycle(FILLING)
    added = -(-4 * len(text) // 10)
    filling = "".join(" " if place % 7 == 0 else next(letters) for place in range(added))
    # An insertion comes last, behind its colon.
    head, marker, tail = wide.partition(": %s")
    return head + filling + marker + tail


def long_language(english):
    lines = []
    for line in english.splitlines():
        identifier, equals, text = line.partition("=")
        lines.append(identifier + equals + longer(text) if equals and identifier.isdigit() else line)
    return "\n".join(lines) + "\n"


if __name__ == "__main__":
    english, target = sys.argv[1:]
    pathlib.Path(target).write_text(
        long_language(pathlib.Path(english).read_text(encoding="utf-8")), encoding="utf-8"
    )
