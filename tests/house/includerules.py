"""Which folder may include what: includerules.py ROOT prints every include that breaks the house's rules.

The rules follow from the folders' purposes: logic knows the system by the interfaces in system/ alone, so that it runs
on Linux and in tests; only the last three folders of the house meet Windows itself.
"""

import pathlib
import re
import sys

STANDARD = set(
    """algorithm any array atomic barrier bit bitset cassert cctype cerrno cfenv cfloat charconv chrono cinttypes climits
    clocale cmath codecvt compare complex concepts condition_variable coroutine csetjmp csignal cstdarg cstddef cstdint
    cstdio cstdlib cstring ctime cuchar cwchar cwctype deque exception execution filesystem format forward_list fstream
    functional future initializer_list iomanip ios iosfwd iostream istream iterator latch limits list locale map memory
    memory_resource mutex new numbers numeric optional ostream queue random ranges ratio regex scoped_allocator semaphore
    set shared_mutex source_location span sstream stack stdexcept stop_token streambuf string string_view strstream
    syncstream system_error thread tuple type_traits typeindex typeinfo unordered_map unordered_set utility valarray
    variant vector version""".split()
)

# From the ground up: each may include those before it.
FLOORS = ["base", "system", "formats", "core", "scan", "repair", "ui"]
WINDOWS = ["platform/windows", "ui/windows", "app"]
EVERYTHING = [*FLOORS, "platform/memory", "tests"]

# Folder -> the house's folders, or single headers, that it may include beside its own.
MAY_INCLUDE = {
    "base": [],
    "system": ["base"],
    "formats": ["base", "system"],
    "core": ["base", "system", "formats"],
    "scan": ["base", "system", "formats", "core"],
    "repair": ["base", "system", "formats", "core", "scan/scanproblem.h", "scan/scantrees.h"],
    "ui": ["base", "system", "formats", "core", "scan", "repair"],
    "platform/memory": ["base", "system", "core"],
    "platform/windows": ["base", "system"],
    "ui/windows": ["base", "system", "core", "ui", "platform/windows"],
    "app": [*FLOORS, "platform/windows", "ui/windows"],
    "tests": [*FLOORS, "platform/memory"],
    "tests/contract/windows": EVERYTHING + WINDOWS,
    "tests/wine": ["base", "system", "platform/windows", "ui/windows/controlsapi.h",
                   "ui/windows/commands.h"],
    "bench": EVERYTHING,
    "bench/windows": EVERYTHING + ["bench"] + WINDOWS,
    "bench/native": EVERYTHING + ["bench"],
    "fuzz": EVERYTHING,
}

# Headers of libraries, by folder; the folders of ANY_SYSTEM_HEADER may include the system's too.
LIBRARIES = {"formats": {"zlib.h", "pugixml.hpp"}, "tests": {"gtest/gtest.h", "zlib.h"}}
LIBRARIES["tests/contract/windows"] = LIBRARIES["tests"]
ANY_SYSTEM_HEADER = {*WINDOWS, "tests/wine", "bench/native"}

SOURCE_ENDINGS = {".h", ".hpp", ".cpp", ".cc", ".c", ".inc", ".rc"}
INCLUDE = re.compile(r'^\s*#\s*include(?:_next)?\s*(?:<([^>]*)>|"([^"]*)"|(.*))')


def house_folder(path):
    """The longest folder of the house that holds the path; None for a folder that the house doesn't know."""
    folders = [folder for folder in MAY_INCLUDE if str(path).startswith(folder + "/")]
    return max(folders, key=len, default=None)


def system_header_fault(folder, name):
    if name in STANDARD or folder in ANY_SYSTEM_HEADER or name in LIBRARIES.get(folder, ()):
        return None
    if name.lower() == "windows.h":
        return f"<windows.h> belongs into {', '.join(WINDOWS)} alone"
    return f"{folder}/ may not include <{name}>"


def own_header_fault(root, folder, name):
    if not (root / name).is_file() and not (root / f"{name}.in").is_file():  # the build makes it
        return f'"{name}" is no path from the top folder'
    owner = house_folder(name)
    if owner == folder or owner in MAY_INCLUDE[folder] or name in MAY_INCLUDE[folder]:
        return None
    return f'{folder}/ may not include "{name}"'


def file_faults(root, path):
    folder = house_folder(path)
    if folder is None:
        yield f"{path}: no folder of the house holds this source"
        return
    for number, line in enumerate((root / path).read_text(encoding="utf-8").splitlines(), 1):
        match = INCLUDE.match(line)
        if not match:
            continue
        system, own, other = match.groups()
        if other is not None:
            fault = "an include is written out, not computed"
        elif system is not None:
            fault = system_header_fault(folder, system)
        else:
            fault = own_header_fault(root, folder, own)
        if fault:
            yield f"{path}:{number}: {fault}"


def sources(root):
    for path in sorted(root.rglob("*")):
        inner = path.relative_to(root)
        hidden = inner.parts[0] == "build" or any(part.startswith(".") for part in inner.parts)
        if path.suffix in SOURCE_ENDINGS and path.is_file() and not hidden:
            yield inner


def faults(root):
    return [fault for path in sources(root) for fault in file_faults(root, path)]


def main():
    root = pathlib.Path(sys.argv[1])
    found = faults(root)
    for fault in found:
        print(fault)
    count = len(list(sources(root)))
    print(f"{count} sources, {len(found)} faults")
    sys.exit(1 if found or count == 0 else 0)


if __name__ == "__main__":
    main()
