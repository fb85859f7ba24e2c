"""Holds the compiled manual to its sources: chmaudit.py FILE... prints what differs.

Every file of help/ must be in it with its name and size, and the program's topic must be the one it opens with.
"""

import pathlib
import sys

import chmfile

HELP = pathlib.Path(__file__).resolve().parent.parent.parent / "help"
SHIPPED = {".htm", ".css", ".png", ".hhc", ".hhk"}
# What "#SYSTEM" says under which code.
SYSTEM = {0: "help.hhc", 1: "help.hhk", 2: "Registry_Cleaner.htm", 3: "Corvalt Help"}


def sources(folder):
    """Name in the compiled file -> size."""
    files = [path for path in folder.rglob("*") if path.suffix in SHIPPED]
    return {f"/{path.relative_to(folder).as_posix()}": path.stat().st_size for path in files}


def faults(path, folder=HELP):
    try:
        chm = chmfile.ChmFile(pathlib.Path(path).read_bytes())
        system = chm.system()
    except (OSError, chmfile.DamagedFile) as error:
        return [f"{path}: {error}"]
    found = []
    for name, size in sorted(sources(folder).items()):
        if name not in chm.entries:
            found.append(f"{path}: {name} is missing")
        elif chm.entries[name][2] != size:
            found.append(f"{path}: {name} has {chm.entries[name][2]} bytes, its source {size}")
    for code, text in SYSTEM.items():
        if system.get(code) != text:
            found.append(f"{path}: #SYSTEM says {system.get(code)} under {code}, not {text}")
    return found


def main():
    found = [fault for path in sys.argv[1:] for fault in faults(path)]
    print("\n".join([*found, f"faults: {len(found)}"]))
    sys.exit(bool(found) or len(sys.argv) < 2)


if __name__ == "__main__":
    main()
