#!/usr/bin/env python3
"""Checks the sources of the program's two data files and packs them.

    pack.py exclusions exclusions.txt typicalproblems.txt registry.dat
    pack.py traces adware-traces.tsv healthy.reg xdata.dat
    pack.py --explain exclusions.txt problems.expected...

A packed file is two bytes that mean nothing, then one zlib stream. A source that breaks a rule of README.md is
refused: every finding is printed as "file:line: what is wrong", nothing is written, and the exit code is 1.

--explain prints for every exclusion which of the written-down problems it shields, by section and text, and ends with 1
when one shields none and does not say why it stays.
"""

import os
import re
import sys
import zlib
from typing import NamedTuple
from xml.sax.saxutils import escape

import problems
from healthyregistry import HealthyRegistry

PREFIX = b"CV"

ROOTS = (
    "HKEY_CLASSES_ROOT",
    "HKEY_CURRENT_USER",
    "HKEY_LOCAL_MACHINE",
    "HKEY_USERS",
    "HKEY_CURRENT_CONFIG",
    "HKEY_DYN_DATA",
)
KINDS = ("SERVICE", "REGKEY", "REGVALUE", "BHO", "TOOLBAR")
NAME_ELEMENT = "name"  # the first child of a program; the scanner must not take it for a kind
HEADER = ("program", "kind", "trace", "source", "confidence")
CONFIDENCES = ("high", "medium")
CLASS_ID = re.compile(r"\{[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\}")
CONTROL_CHARACTER = re.compile(r"[\x00-\x08\x0b-\x1f\x7f\ufffe\uffff]")

# Keys that many programs share. A trace must lie below one of them: a repair deletes the traced key as a whole.
SHARED_KEYS = frozenset(
    name.lower()
    for name in (
        r"HKEY_CLASSES_ROOT\AppID",
        r"HKEY_CLASSES_ROOT\CLSID",
        r"HKEY_CLASSES_ROOT\Interface",
        r"HKEY_CLASSES_ROOT\TypeLib",
        r"HKEY_CURRENT_USER\Software\Classes",
        r"HKEY_CURRENT_USER\Software\Clients\StartMenuInternet",
        r"HKEY_CURRENT_USER\Software\Microsoft\Internet Explorer\Toolbar",
        r"HKEY_CURRENT_USER\Software\Microsoft\Windows NT\CurrentVersion\Winlogon",
        r"HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Explorer\Shell Folders",
        r"HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Run",
        r"HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Uninstall",
        r"HKEY_CURRENT_USER\Software\Policies\Microsoft",
        r"HKEY_LOCAL_MACHINE\SOFTWARE\Clients\StartMenuInternet",
        r"HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Internet Explorer\Toolbar",
        r"HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\MediaPlayer\ShimInclusionList",
        r"HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows NT\CurrentVersion\Winlogon\Notify",
        r"HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\Explorer\Browser Helper Objects",
        r"HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\Run",
        r"HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\Uninstall",
        r"HKEY_LOCAL_MACHINE\SOFTWARE\Policies\Microsoft",
        r"HKEY_LOCAL_MACHINE\SOFTWARE\WOW6432Node\Microsoft\Windows\CurrentVersion\Uninstall",
        r"HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Control",
        r"HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Services",
    )
)

# The texts of the section headers, which the exclusions are compared with too.
HEADERS = tuple(root.lower() + "\\\\" for root in problems.ROOTS.values())

# What says nothing of a program: names that many programs bear, and identifiers that nobody made.
GENERIC_NAMES = frozenset(
    (
        *("agent", "antivirus", "avscan", "conduit", "pagent", "pcapp", "sentry", "smartsecurity", "spigot"),
        *("update", "updater", "winnet"),
    )
)
SHORTEST_NAME = 4
ALL_ZEROS = re.compile(r"\{0{8}-0{4}-0{4}-0{4}-0{12}\}")

class Exclusion(NamedTuple):
    line: int
    entry: str
    reason: str


class Trace(NamedTuple):
    line: int
    program: str
    kind: str
    trace: str


class Findings(Exception):
    """What is wrong with a source, as (line, message)."""

    def __init__(self, found):
        super().__init__("; ".join(f"line {line}: {message}" for line, message in found))
        self.found = found


def numbered_lines(text):
    return enumerate(text.split("\n"), start=1)


def raise_if_any(found):
    if found:
        raise Findings(sorted(found))


# --- exclusions ---


def read_exclusions(text, typical=()):
    """The entries of the source in its order; raises Findings for what the reader in the program would misread, and for
    an entry that shields one of the typical problems."""
    found, exclusions = [], []
    for number, line in numbered_lines(text):
        if line.strip() == "" or line.startswith(";"):
            continue
        entry, separator, reason = line.partition(" // ")
        if not separator or not reason.strip():
            found.append((number, "an entry needs ' // ' and its reason"))
        elif entry == "":
            found.append((number, "the entry is empty"))
        else:
            found.extend((number, message) for message in exclusion_faults(entry, typical))
            exclusions.append(Exclusion(number, entry, reason))
    found.extend(exclusion_clashes(exclusions))
    raise_if_any(found)
    return exclusions


def exclusion_faults(entry, typical):
    if entry != entry.strip():
        yield "the entry begins or ends with a blank"
    if "//" in entry:
        yield "the entry holds '//', where its remark would begin"
    if entry != entry.lower():
        yield "the entry is not in lower case"
    if CONTROL_CHARACTER.search(entry) or "\t" in entry:
        yield "the entry holds a control character"
    if any(entry in header for header in HEADERS):
        yield "the entry would silence the headers of sections"
    for problem in typical:
        if entry in problem.probe:
            yield f"the entry would silence what the section {problem.section} is for, such as {problem.place}"
            break


def exclusion_clashes(exclusions):
    for earlier, later in zip(exclusions, exclusions[1:]):
        if earlier.entry == later.entry:
            yield later.line, f"the entry stands in line {earlier.line} already"
        elif earlier.entry > later.entry:
            yield later.line, "the entries are not sorted"
    for outer in exclusions:
        for inner in exclusions:
            if inner.entry != outer.entry and inner.entry and inner.entry in outer.entry:
                yield outer.line, f"the entry is needless beside that of line {inner.line}, which lies inside it"


# --- traces ---


def read_traces(text, healthy=HealthyRegistry("")):
    """The traces of the source in its order; raises Findings for every line that the scan could not use, and for a
    trace that it would find on a healthy machine."""
    lines = list(numbered_lines(text))
    found, traces = [], []
    if lines[0][1].split("\t") != list(HEADER):
        found.append((1, "the first line must name the columns " + ", ".join(HEADER)))
    for number, line in lines[1:]:
        if line == "":
            continue
        columns = line.split("\t")
        if len(columns) != len(HEADER):
            found.append((number, f"{len(columns)} columns instead of {len(HEADER)}"))
            continue
        program, kind, trace, _source, confidence = columns
        found.extend((number, message) for message in column_faults(columns))
        if confidence not in CONFIDENCES:
            found.append((number, f"the confidence '{confidence}' is none of {', '.join(CONFIDENCES)}"))
        if kind not in KINDS:
            found.append((number, f"the kind '{kind}' is none of {', '.join(KINDS)}"))
            continue
        found.extend((number, message) for message in trace_faults(kind, trace))
        found.extend((number, message) for message in innocence(kind, trace, healthy))
        traces.append(Trace(number, program, kind, trace))
    found.extend(trace_clashes(traces))
    raise_if_any(found)
    return traces


def column_faults(columns):
    for name, text in zip(HEADER, columns):
        if text == "":
            yield f"the {name} is empty"
        if text != text.strip():
            yield f"the {name} begins or ends with a blank"
        if CONTROL_CHARACTER.search(text):
            yield f"the {name} holds a control character"


def trace_faults(kind, trace):
    if kind in ("BHO", "TOOLBAR"):
        if not CLASS_ID.fullmatch(trace):
            yield f"'{trace}' is no class identifier in braces and upper case"
    elif kind == "SERVICE":
        if "\\" in trace:
            yield "a service name holds no backslash"
    else:
        yield from registry_place_faults(kind, trace)


def registry_place_faults(kind, trace):
    root, *names = trace.split("\\")
    if root not in ROOTS:
        yield f"'{root}' is no root key's full name"
        return
    if kind == "REGKEY" and not names:
        yield "a REGKEY needs a key path after its root"
    elif kind == "REGVALUE" and len(names) < 2:
        yield "a REGVALUE needs a key path and a value name after its root"
    elif any(name == "" for name in names):
        yield "a name between two backslashes is empty"
    elif kind == "REGKEY" and is_shared_key(trace.lower()):
        yield "many programs share this key; a repair would delete all of it"
    elif kind == "REGKEY" and root != "HKEY_CLASSES_ROOT" and names[0].lower() != "software":
        yield "a REGKEY lies below HKEY_CLASSES_ROOT or Software; a service is a SERVICE"
    if trace.lower().startswith("hkey_local_machine\\software\\classes\\"):
        yield "write HKEY_LOCAL_MACHINE\\SOFTWARE\\Classes as HKEY_CLASSES_ROOT"


def innocence(kind, trace, healthy):
    """Why the trace proves nothing of an unwanted program."""
    if healthy.holds(kind, trace):
        yield "a healthy machine holds this too"
    if ALL_ZEROS.search(trace):
        yield "the identifier of zeros is nobody's"
    name = own_name(kind, trace)
    if name is not None and (name.lower() in GENERIC_NAMES or len(name) < SHORTEST_NAME):
        yield f"the name '{name}' says too little; many programs could bear it"


def own_name(kind, trace):
    """The name that alone makes the trace: of a service, of a value in a Run key, or of a key right below Software."""
    if kind == "SERVICE":
        return trace
    *key, name = trace.split("\\")
    place = "\\".join(key[1:]).lower()
    if kind == "REGVALUE" and place.endswith("\\currentversion\\run"):
        return name
    if kind == "REGKEY" and place in ("software", "software\\wow6432node"):
        return name
    return None


def is_shared_key(trace):
    """Whether the key is one that many programs share, or an ancestor of one."""
    return any(shared == trace or shared.startswith(trace + "\\") for shared in SHARED_KEYS)


def sort_key(trace):
    return trace.program.casefold(), KINDS.index(trace.kind), trace.trace.casefold()


def trace_clashes(traces):
    yield from ancestor_clashes(traces)
    lines, spellings = {}, {}
    for previous, trace in zip([None, *traces], traces):
        place = (trace.kind, trace.trace.casefold())
        if place in lines:
            yield trace.line, f"this {trace.kind} stands in line {lines[place]} already"
        lines.setdefault(place, trace.line)
        spelling = spellings.setdefault(trace.program.casefold(), trace.program)
        if spelling != trace.program:
            yield trace.line, f"the program is spelled '{spelling}' elsewhere"
        if previous and sort_key(previous) > sort_key(trace):
            yield trace.line, "the traces are not sorted by program, kind and trace"


def ancestor_clashes(traces):
    """A repair deletes a traced key with all that is below it; what is below must be the same program's."""
    keys = {trace.trace.lower(): trace for trace in traces if trace.kind == "REGKEY"}
    for trace in traces:
        names = trace.trace.lower().split("\\") if trace.kind in ("REGKEY", "REGVALUE") else []
        for count in range(2, len(names)):
            above = keys.get("\\".join(names[:count]))
            if above and above.program != trace.program:
                yield above.line, f"the key lies above a trace of {trace.program} in line {trace.line}"


def as_xml(traces):
    """One element a program, its name first, then a child a trace that is named by the kind."""
    parts, program = ['<?xml version="1.0" encoding="UTF-8"?>\n<programs>\n'], None
    for trace in traces:
        if trace.program != program:
            parts.append("</program>\n" if program is not None else "")
            parts.append(f"<program><{NAME_ELEMENT}>{escape(trace.program)}</{NAME_ELEMENT}>")
            program = trace.program
        parts.append(f"<{trace.kind}>{escape(trace.trace)}</{trace.kind}>")
    parts.append("</program>\n" if program is not None else "")
    parts.append("</programs>\n")
    return "".join(parts)


# --- packing ---


def packed(text):
    return PREFIX + zlib.compress(text.encode("utf-8"), 9)


def pack_exclusions(text, typical=""):
    read_exclusions(text, problems.read_problems(typical))
    return packed(text)


def pack_traces(text, healthy=""):
    return packed(as_xml(read_traces(text, HealthyRegistry(healthy))))


PACKERS = {"exclusions": pack_exclusions, "traces": pack_traces}


def read_source(path):
    with open(path, encoding="utf-8", newline="") as file:
        text = file.read()
    if "\r" in text or text.startswith("\ufeff"):
        raise Findings([(1, "the file must have LF line ends and no byte order mark")])
    return text


def write_whole(path, content):
    temporary = path + ".part"
    with open(temporary, "wb") as file:
        file.write(content)
    os.replace(temporary, path)


def pack(what, source, against, target):
    write_whole(target, PACKERS[what](read_source(source), read_source(against)))
    return 0


def explain(source, *paths):
    written_down = [problem for path in paths for problem in problems.read_problems(read_source(path))]
    lines, idle = problems.explained(read_exclusions(read_source(source)), written_down)
    print("\n".join(lines))
    for exclusion in idle:
        print(f"{source}:{exclusion.line}: '{exclusion.entry}' shields nothing that is written down", file=sys.stderr)
    return 1 if idle else 0


def main(arguments):
    what, *paths = arguments or [""]
    source = paths[0] if paths else ""
    try:
        if what == "--explain" and len(paths) > 1:
            return explain(*paths)
        if what in PACKERS and len(paths) == 3:
            return pack(what, *paths)
    except Findings as findings:
        for line, message in findings.found:
            print(f"{source}:{line}: {message}", file=sys.stderr)
        return 1
    except UnicodeDecodeError as error:
        print(f"{source}:1: not UTF-8: {error}", file=sys.stderr)
        return 1
    print(__doc__, file=sys.stderr)
    return 2


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
