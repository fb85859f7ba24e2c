"""Runs clang-tidy over the project's sources; ends with "N passed, N failed".

tools/tidy.py [FILE...]: all sources, or those named, as the builds native-debug, fuzz and windows-x64 compile them.
A source that passed is not looked at again until it, a header of ours that it includes, its command or the
configuration changes.
"""

import concurrent.futures
import functools
import hashlib
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys

TOP = pathlib.Path(__file__).resolve().parent.parent
PASSED = TOP / "build" / "tidy"
CONFIGURATION = TOP / ".clang-tidy"
# The Windows build compiles everything, but clang reads Linux's headers with less ado: it comes last.
PRESETS = ["native-debug", "fuzz", "windows-x64"]
# Options that clang lacks, and instrumentation that it need not see.
GCC_OPTIONS = ("-fsanitize", "-fno-sanitize", "-Wno-restrict", "-Winvalid-pch", "-fpch")
CROSS_COMPILER = "x86_64-w64-mingw32-g++-posix"
# The whole depth of the analyzer takes four fifths of the time and finds nothing more here.
ANALYZER = [word for part in ("-analyzer-config", "mode=shallow") for word in ("-Xclang", part)]


def search_folders(*command):
    """Where a compiler looks for <headers>, in its order."""
    words = [*command, "-E", "-x", "c++", "-v", "/dev/null", "-o", "/dev/null"]
    asked = subprocess.run(words, stderr=subprocess.PIPE, text=True)
    listed = asked.stderr.partition("#include <...> search starts here:")[2].partition("End of search list")[0]
    return [os.path.normpath(line.strip()) for line in listed.splitlines() if line.strip()]


@functools.cache
def windows_arguments():
    """Clang finds the cross-compiler's headers only when told; the compiler's own stay clang's."""
    own = [folder for folder in search_folders("clang++") if "/lib/clang/" in folder]
    cross = search_folders(CROSS_COMPILER)
    libraries = [folder for folder in cross if "/include/c++" in folder or "/lib/gcc/" not in folder]
    folders = [word for folder in own + libraries for word in ("-isystem", folder)]
    return ["--target=x86_64-w64-mingw32", "-nostdinc", *folders, "-Wno-unused-command-line-argument"]


def is_ours(path):
    return path.is_relative_to(TOP) and not path.is_relative_to(TOP / "build")


def commands():
    """Source -> the preset that compiles it first and its entry in that preset's compilation database."""
    found = {}
    for preset in PRESETS:
        database = TOP / "build" / preset / "compile_commands.json"
        if not database.exists():
            sys.exit(f"tidy: the preset {preset} isn't configured")
        for entry in json.loads(database.read_text()):
            source = pathlib.Path(entry["file"])
            if is_ours(source) and source.suffix == ".cpp":
                found.setdefault(source, (preset, entry))
    return found


def arguments_of(preset, entry):
    """The compiler's words that matter to clang: without the launcher, compiler, output and GCC's own options."""
    words = shlex.split(entry["command"])
    first = next(index for index, word in enumerate(words) if word.startswith("-"))
    kept, skip = [], False
    for word in words[first:]:
        if skip:
            skip = False
        elif word in ("-o", "-MT", "-MF", "-include"):  # without precompiled headers: each file includes what it uses
            skip = True
        elif word not in ("-c", "-MD", entry["file"]) and not word.startswith(GCC_OPTIONS):
            kept.append(word)
    return kept + ANALYZER + (windows_arguments() if preset.startswith("windows") else [])


def own_includes(source, seen):
    """Every header of ours that the source reaches; all are included by their path from the top."""
    for name in re.findall(r'^\s*#\s*include\s*"([^"]+)"', source.read_text(errors="replace"), re.M):
        header = TOP / name
        if header.exists() and header not in seen:
            seen.add(header)
            own_includes(header, seen)
    return seen


def fingerprint(source, arguments, version):
    digest = hashlib.sha256()
    for text in [version, *arguments]:
        digest.update(text.replace(str(TOP), "").encode() + b"\0")
    configurations = [folder / ".clang-tidy" for folder in source.parents if is_ours(folder) or folder == TOP]
    for file in [*filter(pathlib.Path.exists, configurations), source, *sorted(own_includes(source, set()))]:
        digest.update(str(file.relative_to(TOP)).encode() + b"\0" + file.read_bytes() + b"\0")
    return digest.hexdigest()


def lint(source, arguments, version):
    """Nothing when the source is clean, else what clang-tidy says."""
    mark = PASSED / fingerprint(source, arguments, version)
    if mark.exists():
        return None
    command = ["clang-tidy", "--quiet", str(source), "--", *arguments]
    finished = subprocess.run(command, cwd=TOP, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    if finished.returncode != 0:
        return finished.stdout
    mark.touch()
    return None


def main():
    PASSED.mkdir(parents=True, exist_ok=True)
    version = subprocess.run(["clang-tidy", "--version"], check=True, stdout=subprocess.PIPE, text=True).stdout
    known = commands()
    wanted = {TOP / name for name in sys.argv[1:]} or set(known)
    failed = 0
    for source in sorted(wanted - set(known)):
        print(f"{source.relative_to(TOP)}: no build compiles it")
        failed += 1
    jobs = sorted((source, arguments_of(*known[source])) for source in wanted & set(known))
    with concurrent.futures.ThreadPoolExecutor(len(os.sched_getaffinity(0))) as pool:
        for (source, _), output in zip(jobs, pool.map(lambda job: lint(*job, version), jobs)):
            if output is not None:
                failed += 1
                print(f"{source.relative_to(TOP)}:\n{output}", flush=True)
    print(f"{len(jobs) + len(wanted - set(known)) - failed} passed, {failed} failed")
    sys.exit(1 if failed or not jobs else 0)


if __name__ == "__main__":
    main()
