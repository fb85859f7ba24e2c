"""Fetches a Debian source package: fetchsource.py PACKAGE FOLDER leaves it unpacked in FOLDER/PACKAGE.

The package index is read with a state of its own inside FOLDER, so that neither rights nor a deb-src entry are needed:
the entries are those of this machine's own package sources that are Debian's, asked for sources.
"""

import fcntl
import pathlib
import re
import shutil
import subprocess
import sys

APT_FOLDER = pathlib.Path("/etc/apt")


def codename():
    """The release's name, such as bookworm; third parties' suites are named otherwise."""
    for line in pathlib.Path("/etc/os-release").read_text().splitlines():
        if line.startswith("VERSION_CODENAME="):
            return line.partition("=")[2].strip('"')
    sys.exit("fetchsource: /etc/os-release names no release")


def is_debians(suites, components, keyring):
    release = re.compile(rf"({codename()}|stable|oldstable)(-updates|-security|/updates|-proposed-updates)?$")
    of_release = all(release.match(suite) for suite in suites)
    of_key = not keyring or "debian-archive" in keyring or "BEGIN PGP" in keyring
    return bool(suites) and of_release and "main" in components and of_key


def deb822_entries(text):
    """The paragraphs of a .sources file as dictionaries of field to text, continuation lines included."""
    for paragraph in re.split(r"\n[ \t]*\n", text):
        fields, last = {}, None
        for line in paragraph.splitlines():
            if line.startswith("#"):
                continue
            if line[:1] in (" ", "\t") and last:
                fields[last] += "\n" + line
            elif ":" in line:
                last, _, value = line.partition(":")
                last = last.strip().lower()
                fields[last] = value.strip()
        if fields:
            yield fields


def source_entries_of_deb822(text):
    for fields in deb822_entries(text):
        kinds = fields.get("types", "").split()
        enabled = fields.get("enabled", "yes").lower() not in ("no", "false", "0")
        suites, components = fields.get("suites", "").split(), fields.get("components", "").split()
        keyring = fields.get("signed-by", "")
        if not enabled or not {"deb", "deb-src"} & set(kinds) or not is_debians(suites, components, keyring):
            continue
        lines = ["Types: deb-src", f"URIs: {fields.get('uris', '')}", f"Suites: {' '.join(suites)}", "Components: main"]
        lines += [f"Signed-By: {keyring}"] if keyring else []
        lines += [f"Trusted: {fields['trusted']}"] if "trusted" in fields else []
        lines += [f"Check-Valid-Until: {fields['check-valid-until']}"] if "check-valid-until" in fields else []
        yield "\n".join(lines)


def source_entries_of_lines(text):
    for line in text.splitlines():
        entry = re.match(r"\s*deb(?:-src)?\s+(?:\[([^]]*)\]\s+)?(\S+)\s+(\S+)\s+([^#]*)", line)
        if not entry:
            continue
        options, uri, suite, components = entry.groups()
        settings = dict(option.partition("=")[::2] for option in (options or "").split())
        if not is_debians([suite], components.split(), settings.get("signed-by", "")):
            continue
        lines = ["Types: deb-src", f"URIs: {uri}", f"Suites: {suite}", "Components: main"]
        names = {"signed-by": "Signed-By", "trusted": "Trusted", "check-valid-until": "Check-Valid-Until"}
        lines += [f"{names[key]}: {value}" for key, value in settings.items() if key in names]
        yield "\n".join(lines)


def source_entries():
    entries = []
    parts = APT_FOLDER / "sources.list.d"
    for file in [APT_FOLDER / "sources.list", *sorted(parts.glob("*.list"))]:
        if file.is_file():
            entries += source_entries_of_lines(file.read_text(errors="replace"))
    for file in sorted(parts.glob("*.sources")):
        entries += source_entries_of_deb822(file.read_text(errors="replace"))
    return list(dict.fromkeys(entries))


def run(command, folder):
    finished = subprocess.run(command, cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    return finished.returncode, finished.stdout


def download(package, folder):
    """Leaves PACKAGE's .dsc and archives in folder."""
    entries = source_entries()
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
