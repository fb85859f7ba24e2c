"""Writes what the installer packs and its uninstaller removes, file by file: installerlists.py X64 X86 TARGET.

X64 and X86 are the installed folders of the two kinds. Files that are the same in both are packed once. TARGET gets
x64.nsh, x86.nsh and common.nsh with the files, remove.nsh with their removal, and prints the sizes in KB for the command line of
the installer's compiler.
"""

import pathlib
import sys


def files_of(folder):
    found = sorted(path.relative_to(folder).as_posix() for path in folder.rglob("*") if path.is_file())
    if not found:
        sys.exit(f"installerlists: {folder} holds no file")
    return found


def windows(path):
    return path.replace("/", "\\")


def folder_of(path):
    return path.rpartition("/")[0]


def packing(symbol, paths):
    """NSIS's lines that unpack the files below the folder that the compiler knows as symbol."""
    lines, current = [], None
    for path in paths:
        folder = folder_of(path)
        if folder != current:
            lines.append('SetOutPath "$INSTDIR' + (f"\\{windows(folder)}" if folder else "") + '"')
            current = folder
        lines.append(f'File "${{{symbol}}}/{path}"')
    return lines


def removal(paths):
    """The files, then the folders that are empty without them, the deepest first."""
    folders = {folder_of(path) for path in paths} - {""}
    lines = [f'Delete "$INSTDIR\\{windows(path)}"' for path in paths]
    lines += [f'RMDir "$INSTDIR\\{windows(folder)}"' for folder in sorted(folders, key=lambda f: (-f.count("/"), f))]
    return lines


def kilobytes(folder):
    return (sum(path.stat().st_size for path in folder.rglob("*") if path.is_file()) + 1023) // 1024


def main():
    x64, x86, target = (pathlib.Path(argument) for argument in sys.argv[1:4])
    names = {"X64": files_of(x64), "X86": files_of(x86)}
    shared = [
        path
        for path in names["X64"]
        if path in names["X86"] and (x64 / path).read_bytes() == (x86 / path).read_bytes()
    ]
    target.mkdir(parents=True, exist_ok=True)
    lists = {symbol.lower(): packing(symbol, [p for p in paths if p not in shared]) for symbol, paths in names.items()}
    lists["common"] = packing("X64", shared)
    lists["remove"] = removal(sorted(set(names["X64"]) | set(names["X86"])))
    for name, lines in lists.items():
        (target / f"{name}.nsh").write_text("".join(f"{line}\n" for line in lines))
    print(f"-DX64_SIZE={kilobytes(x64)} -DX86_SIZE={kilobytes(x86)}")


if __name__ == "__main__":
    main()
