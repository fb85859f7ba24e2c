"""Holds a program to its pictures: pictureaudit.py window PROGRAM to those that pictures.rc lists, pictureaudit.py console
PROGRAM to the program's icon. Prints what is missing.

Reads the program's resources with wrestool, and the sizes of each picture out of its icon.
"""

import pathlib
import re
import struct
import subprocess
import sys

PICTURES = pathlib.Path(__file__).resolve().parent.parent.parent / "app" / "resources" / "pictures.rc"
PROGRAM_ICON = 1
SIZES = (16, 20, 24, 32)
PROGRAM_SIZES = (*SIZES, 48, 256)


def listed_pictures():
    """Resource number -> path of its picture below the project, without an extension."""
    lines = re.findall(r'^(\d+) ICON "(.+)\.ico"$', PICTURES.read_text(), re.MULTILINE)
    return {int(number): path for number, path in lines}


def expected_sizes(number):
    return PROGRAM_SIZES if number == PROGRAM_ICON else SIZES


def images(icon):
    """The images of an icon file, pairs of the size in pixels and the image's bytes."""
    reserved, kind, count = struct.unpack_from("<3H", icon)
    assert (reserved, kind) == (0, 1), "no icon file"
    found = []
    for index in range(count):
        width, height, _, _, _, _, length, offset = struct.unpack_from("<4B2H2I", icon, 6 + 16 * index)
        assert width == height, "not square"
        found.append((width or 256, icon[offset : offset + length]))
    return found


def wrestool(program, *options):
    command = ["wrestool", *options, "--type=group_icon", str(program)]
    return subprocess.run(command, check=True, stdout=subprocess.PIPE).stdout


def faults(kind, program):
    found = []
    pictures = listed_pictures()
    if kind == "console":
        pictures = {PROGRAM_ICON: pictures[PROGRAM_ICON]}
    present = {int(number) for number in re.findall(rb"--name=(\d+)", wrestool(program, "--list"))}
    for number, path in pictures.items():
        if number not in present:
            found.append(f"{program}: no picture {number} ({path})")
            continue
        sizes = tuple(size for size, _ in images(wrestool(program, "--extract", f"--name={number}")))
        if sizes != expected_sizes(number):
            found.append(f"{program}: picture {number} ({path}) has the sizes {sizes}")
    return found


def main():
    kind, program = sys.argv[1:]
    found = faults(kind, program)
    print("\n".join([*found, f"faults: {len(found)}"]))
    sys.exit(bool(found) or len(sys.argv) < 2)


if __name__ == "__main__":
    main()
