"""Fetches a Debian source package: fetchsource.py PACKAGE FOLDER leaves it unpacked in FOLDER/PACKAGE.

The package index is read with a state of its own inside FOLDER, so that neither rights nor a deb-src entry are needed:
the entries are those of this machine's own package sources that are Debian's, asked for sources.
"""

import fcntl
import pathlib
import shutil
import subprocess
import sys

from debiansources import APT_FOLDER, source_paragraphs


def run(command, folder):
    finished = subprocess.run(command, cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    return finished.returncode, finished.stdout


def download(package, folder):
    """Leaves PACKAGE's .dsc and archives in folder."""
    entries = source_paragraphs()
    if not entries:
        sys.exit(f"fetchsource: no entry of Debian's own among the package sources in {APT_FOLDER}")
    state = folder / "apt"
    for part in ("lists/partial", "cache/archives/partial"):
        (state / part).mkdir(parents=True, exist_ok=True)
    (state / "debian.sources").write_text("\n\n".join(entries) + "\n")
    options = {
        "Dir::State": state,
        "Dir::State::lists": state / "lists",
        "Dir::State::status": "/var/lib/dpkg/status",
        "Dir::Cache": state / "cache",
        "Dir::Etc::SourceList": state / "debian.sources",
        "Dir::Etc::SourceParts": "/dev/null",
        "Acquire::Languages": "none",
        "Acquire::Retries": "3",
    }
    apt = ["apt-get", "-q"] + [word for key, value in options.items() for word in ("-o", f"{key}={value}")]
    # One index may fail (a mirror without the updates, say) while another holds the package.
    _, update_log = run(apt + ["update"], folder)
    code, log = run(apt + ["--download-only", "--only-source", "source", package], folder)
    if code != 0:
        sys.exit(f"fetchsource: {package} could not be downloaded\n{update_log}{log}")


def fetch(package, folder):
    work = folder / f"{package}.part"
    shutil.rmtree(work, ignore_errors=True)
    work.mkdir(parents=True)
    print(f"-- Fetching the source package {package}", flush=True)
    download(package, work)
    descriptions = list(work.glob("*.dsc"))
    if len(descriptions) != 1:
        sys.exit(f"fetchsource: expected one description of {package}, found {len(descriptions)}")
    code, log = run(["dpkg-source", "-x", descriptions[0].name, "unpacked"], work)
    if code != 0:
        sys.exit(f"fetchsource: {package} could not be unpacked\n{log}")
    (work / "unpacked").rename(folder / package)
    shutil.rmtree(work)


def main():
    package, folder = sys.argv[1], pathlib.Path(sys.argv[2]).absolute()
    folder.mkdir(parents=True, exist_ok=True)
    with open(folder / "lock", "w") as lock:  # two presets may be configured at once
        fcntl.flock(lock, fcntl.LOCK_EX)
        if not (folder / package).is_dir():
            fetch(package, folder)


if __name__ == "__main__":
    try:
        main()
    except FileNotFoundError as missing:
        sys.exit(f"fetchsource: {missing.filename} is missing; the packages apt and dpkg-dev are needed")
