"""Problems of a scan, written down one a line, and what an entry of the exclusions finds in them.

The lines are those of the .expected files of the tests and of typicalproblems.txt:

    [section | ...]
    kind image full path | value name | value data | text

A line that begins with "#" is a remark.
"""

import re
from typing import NamedTuple

ROOTS = {
    "HKCR": "HKEY_CLASSES_ROOT",
    "HKCU": "HKEY_CURRENT_USER",
    "HKLM": "HKEY_LOCAL_MACHINE",
    "HKU": "HKEY_USERS",
}


class Problem(NamedTuple):
    section: str
    text: str  # the number of its text, or the text itself
    place: str  # as the line has it
    probe: str  # what the exclusions are compared with


def unescaped(text):
    return re.sub(r"\\u([0-9a-f]{4})", lambda match: chr(int(match.group(1), 16)), text)


def probe_of(place, name, data):
    """The lower-case text that the scan compares the entries with; place begins with a root's short name."""
    root = re.match("[A-Z]+", place).group()
    return "\\".join((ROOTS[root] + place[len(root) :].lstrip(" "), name, data)).lower()


def read_problems(text):
    problems, section = [], ""
    for line in text.split("\n"):
        if line.startswith("["):
            section = line.strip("[]").split(" | ")[0]
        elif line and not line.startswith("#"):
            _kind, _image, rest = line.split(" ", 2)
            place, name, data, said = (unescaped(column.strip()) for column in re.split(r" \|(?= )", rest, maxsplit=3))
            problems.append(Problem(section, re.sub(r"\(.*", "", said), place, probe_of(place, name, data)))
    return problems


def explanation(exclusions, problems):
    """(exclusion, the problems that it shields) for every exclusion, in their order."""
    return [
        (exclusion, [problem for problem in problems if exclusion.entry in problem.probe]) for exclusion in exclusions
    ]


def explained(exclusions, problems):
    """The lines that say what each entry is for, and the entries that shield nothing and do not say why they stay."""
    lines, idle = [], []
    for exclusion, shielded in explanation(exclusions, problems):
        lines.append(exclusion.entry)
        counts = {}
        for problem in shielded:
            counts.setdefault((problem.section, problem.text), []).append(problem)
        for (section, text), found in counts.items():
            lines.append(f"    {section}, text {text}: {len(found)}, such as {found[0].place}")
        if not shielded:
            stays = exclusion.reason.partition("| stays: ")[2]
            lines.append("    stays: " + stays if stays else "    matches nothing")
            if not stays:
                idle.append(exclusion)
    return lines, idle
