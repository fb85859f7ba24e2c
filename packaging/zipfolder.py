"""Packs a folder: zipfolder.py FOLDER NAME TARGET SECONDS writes the zip TARGET with all of FOLDER below NAME/.

The same files give the same bytes: entries are sorted, and all carry one time (seconds since 1970, UTC), one set of rights
and one way of compression.
"""

import pathlib
import sys
import time
import zipfile

# The zip format counts years from 1980, in steps of two seconds.
FIRST_TIME = 315532800
FILE_RIGHTS = 0o644


def main():
    folder, name, target = pathlib.Path(sys.argv[1]), sys.argv[2], pathlib.Path(sys.argv[3])
    moment = time.gmtime(max(int(sys.argv[4]), FIRST_TIME))[:6]
    files = sorted(path for path in folder.rglob("*") if path.is_file())
    if not files:
        sys.exit(f"zipfolder: {folder} holds no file")
    with zipfile.ZipFile(target, "w") as archive:
        for path in files:
            entry = zipfile.ZipInfo(f"{name}/{path.relative_to(folder).as_posix()}", moment)
            entry.compress_type = zipfile.ZIP_DEFLATED
            entry.external_attr = FILE_RIGHTS << 16
            archive.writestr(entry, path.read_bytes(), compresslevel=9)


if __name__ == "__main__":
    main()
