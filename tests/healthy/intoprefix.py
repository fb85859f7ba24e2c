"""Turns the healthy machine into what a Wine prefix takes.

intoprefix.py registry HEALTHY EXISTING TARGET
    writes TARGET, a file for the registry editor, from healthy.reg without the values that the prefix has already;
    EXISTING is the editor's export of the prefix
intoprefix.py files LIST DRIVE
    makes the files and folders of healthyfiles.txt below the folder of drive C:
"""

import pathlib
import re
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent.parent / "data"))

from healthyregistry import unquoted  # noqa: E402

# Where the roots stand in an export, which has the machine's and the users' keys alone.
REAL_ROOTS = {
    "hkey_classes_root": "hkey_local_machine\\software\\classes",
    "hkey_current_user": "hkey_users\\s-1-5-21-0-0-0-1000",
}

# The type of a text by its mark, and what ends its data: REG_EXPAND_SZ, REG_MULTI_SZ.
KINDS_OF_TEXT = {"expand": (2, "\0"), "multi": (7, "\0\0")}


def real_key(path):
    root, separator, rest = path.lower().partition("\\")
    return REAL_ROOTS.get(root, root) + separator + rest


def value_name(line):
    return "" if line.startswith("@") else unquoted(line).lower()


def is_value(line):
    return line.startswith(("@=", '"'))


def values_of(text):
    """(key, value name) of everything in an export."""
    found, key = set(), ""
    for line in text.splitlines():
        if line.startswith("["):
            key = real_key(line[1:-1])
        elif is_value(line):
            found.add((key, value_name(line)))
    return found


def in_the_editors_form(line):
    """The line with an expandable string, or a list of one string, as the editor writes it."""
    marked = re.match(r'(@|"(?:[^"\\]|\\.)*")=(expand|multi):(.*)', line)
    if not marked:
        return line
    name, mark, text = marked.groups()
    kind, end = KINDS_OF_TEXT[mark]
    data = (unquoted(text) + end).encode("utf-16-le")
    return f"{name}=hex({kind}):" + ",".join(f"{byte:02x}" for byte in data)


def missing_part(text, existing):
    key = ""
    for line in text.splitlines():
        if line.startswith("["):
            key = real_key(line[1:-1])
        if not is_value(line) or (key, value_name(line)) not in existing:
            yield in_the_editors_form(line)


def write_registry(healthy, existing, target):
    have = values_of(pathlib.Path(existing).read_text(encoding="utf-16"))
    text = pathlib.Path(healthy).read_text(encoding="utf-8")
    lines = "\r\n".join(missing_part(text, have)) + "\r\n"
    pathlib.Path(target).write_bytes(("\ufeff" + lines).encode("utf-16-le"))


def entry_of(folder, name):
    """The folder's entry of that name in whatever letter case, or a new one."""
    for entry in folder.iterdir():
        if entry.name.lower() == name.lower():
            return entry
    return folder / name


def make_files(listed, drive):
    for line in pathlib.Path(listed).read_text(encoding="utf-8").splitlines():
        if not line or line.startswith(";"):
            continue
        names = line.removeprefix("C:\\").split("\\")
        place = pathlib.Path(drive)
        for name in names[:-1]:
            place = entry_of(place, name)
            place.mkdir(exist_ok=True)
        if names[-1]:
            file = entry_of(place, names[-1])
            if not file.exists():
                file.touch()


def main(command, *arguments):
    {"registry": write_registry, "files": make_files}[command](*arguments)


if __name__ == "__main__":
    main(*sys.argv[1:])
