"""Holds programs to Windows XP: importaudit.py OBJDUMP PROGRAM... prints every import that isn't in xpimports.txt.

An import that XP lacks keeps the whole program from starting there, and one of a toolchain DLL everywhere.
"""

import pathlib
import re
import subprocess
import sys

ALLOWED_FILE = pathlib.Path(__file__).parent / "xpimports.txt"


def read_allowed(text):
    """Library name in lower case -> names of its routines."""
    allowed, library = {}, None
    for line in text.splitlines():
        words = line.partition("#")[0].split()
        if len(words) == 1 and words[0].startswith("["):
            library = words[0].strip("[]").lower()
            allowed[library] = set()
        elif words:
            allowed[library].update(words)
    return allowed


def imports(dump):
    """Pairs of library and routine, the routine None for the library itself."""
    library = None
    for line in dump.splitlines():
        if match := re.match(r"\s*DLL Name: (\S+)", line):
            library = match.group(1).lower()
            yield library, None
        elif match := re.match(r"\t[0-9a-f]+\t\s*\d+\s+(\S+)", line):
            yield library, match.group(1)
        elif line.startswith("The Export Tables") or line.startswith("PE File Base Relocations"):
            return


def faults(dump, allowed):
    found, count = [], 0
    for library, routine in imports(dump):
        count += 1
        if routine is None:
            if library not in allowed:
                found.append(f"the library {library} isn't one of Windows XP's that are allowed")
        elif library in allowed and routine not in allowed[library]:
            found.append(f"{routine} of {library}: not known to be in Windows XP (xpimports.txt)")
    if count == 0:
        found.append("no imports could be read")
    for part in ("MajorOSystemVersion", "MajorSubsystemVersion"):
        match = re.search(rf"{part}\s+(\d+)", dump)
        if match and int(match.group(1)) > 5:
            found.append(f"{part} {match.group(1)} is newer than Windows XP's 5")
    return found


def main():
    objdump, programs = sys.argv[1], sys.argv[2:]
    allowed = read_allowed(ALLOWED_FILE.read_text(encoding="utf-8"))
    failed = not programs
    for program in programs:
        dump = subprocess.run([objdump, "-p", program], check=True, stdout=subprocess.PIPE, text=True).stdout
        for fault in faults(dump, allowed):
            print(f"{program}: {fault}")
            failed = True
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
