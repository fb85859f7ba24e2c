#!/usr/bin/env python3
"""Checks the sources of the program's two data files and packs them.

    pack.py exclusions exclusions.txt registry.dat
    pack.py traces adware-traces.tsv xdata.dat

A packed file is two bytes that mean nothing, then one zlib stream. A source that breaks a rule of README.md is
refused: every finding is printed as "file:line: what is wrong", nothing is written, and the exit code is 1.
"""

import os
import re
import sys
import zlib
from typing import NamedTuple
from xml.sax.saxutils import escape

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

# Where each section of the scan begins to look; a section's own row in the results is tested too, as its bare root.
SECTION_PLACES = (
    ("the section headers", "HKEY_CURRENT_USER\\"),
    ("the section headers", "HKEY_LOCAL_MACHINE\\"),
    ("the section headers", "HKEY_CLASSES_ROOT\\"),
    ("the section headers", "HKEY_USERS\\"),
    ("Registry Integrity", r"HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Explorer\User Shell Folders"),
    ("Registry Integrity", r"HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Explorer\Shell Folders"),
    ("Files and Folders", r"HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion"),
    ("Files and Folders", r"HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows NT\CurrentVersion"),
    ("Files and Folders", r"HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion"),
    ("Files and Folders", r"HKEY_USERS\.DEFAULT\Software\Microsoft\Windows\CurrentVersion"),
    ("Adware and Spyware", r"HKEY_LOCAL_MACHINE\Software\Microsoft\Windows\CurrentVersion\Explorer\Browser Helper Objects"),
    ("Adware and Spyware", r"HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Internet Explorer\Toolbar"),
    ("Obsolete Software", r"HKEY_CURRENT_USER\Software"),
    ("Obsolete Software", r"HKEY_LOCAL_MACHINE\SOFTWARE"),
    ("Custom Controls", r"HKEY_CLASSES_ROOT\CLSID"),
    ("Custom Controls", r"HKEY_CLASSES_ROOT\TypeLib"),
    ("Custom Controls", r"HKEY_CLASSES_ROOT\Interface"),
    ("File Extensions", r"HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Explorer\FileExts"),
    ("File Associations", r"HKEY_CLASSES_ROOT"),
    ("Start Menu", r"HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Explorer\MenuOrder\Start Menu2\Programs"),
    ("Startup Programs", r"HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Run"),
    ("Startup Programs", r"HKEY_LOCAL_MACHINE\Software\Microsoft\Windows\CurrentVersion\Run"),
    ("Shared Programs", r"HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\SharedDLLs"),
    ("Software Locations", r"HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\App Paths"),
    ("Add/Remove Programs", r"HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\Uninstall"),
    ("Windows Fonts", r"HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\fonts"),
    ("Windows Fonts", r"HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows NT\CurrentVersion\fonts"),
    ("Help and Resources", r"HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\Help"),
    ("Help and Resources", r"HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\Html Help"),
    ("Sounds and Appevents", r"HKEY_CURRENT_USER\AppEvents\Schemes\Apps"),
    ("MRU and History Lists", r"HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\Explorer\ComDlg32\OpenSaveMRU"),
    ("Windows Services", r"HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Services"),
    ("Virtual Devices", r"HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Services\VxD"),
    ("Virtual Devices", r"HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Control\VirtualDeviceDrivers"),
    ("ARP Cache", r"HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows\CurrentVersion\App Management\ARPCache"),
)


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


def read_exclusions(text):
    """The entries of the source in its order; raises Findings for what the reader in the program would misread."""
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
            found.extend((number, message) for message in exclusion_faults(entry))
            exclusions.append(Exclusion(number, entry, reason))
    found.extend(exclusion_clashes(exclusions))
    raise_if_any(found)
    return exclusions


def exclusion_faults(entry):
    if entry != entry.strip():
        yield "the entry begins or ends with a blank"
    if "//" in entry:
        yield "the entry holds '//', where its remark would begin"
    if entry != entry.lower():
        yield "the entry is not in lower case"
    if CONTROL_CHARACTER.search(entry) or "\t" in entry:
        yield "the entry holds a control character"
    for section, place in SECTION_PLACES:
        if entry in place.lower() + "\\":
            yield f"the entry would silence the whole section {section}"
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


def read_traces(text):
    """The traces of the source in its order; raises Findings for every line that the scan could not use."""
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
    if trace.lower().startswith("hkey_local_machine\\software\\classes\\"):
        yield "write HKEY_LOCAL_MACHINE\\SOFTWARE\\Classes as HKEY_CLASSES_ROOT"


def is_shared_key(trace):
    """Whether the key is one that many programs share, or an ancestor of one."""
    return any(shared == trace or shared.startswith(trace + "\\") for shared in SHARED_KEYS)


def sort_key(trace):
    return trace.program.casefold(), KINDS.index(trace.kind), trace.trace.casefold()


def trace_clashes(traces):
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


def pack_exclusions(text):
    read_exclusions(text)
    return packed(text)


def pack_traces(text):
    return packed(as_xml(read_traces(text)))


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


def main(arguments):
    if len(arguments) != 3 or arguments[0] not in PACKERS:
        print(__doc__, file=sys.stderr)
        return 2
    what, source, target = arguments
    try:
        write_whole(target, PACKERS[what](read_source(source)))
    except Findings as findings:
        for line, message in findings.found:
            print(f"{source}:{line}: {message}", file=sys.stderr)
        return 1
    except UnicodeDecodeError as error:
        print(f"{source}:1: not UTF-8: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
