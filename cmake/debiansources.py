"""This machine's own package sources, as far as they are Debian's: no third party's, and no host named here.

Run as a program it prints the release's name and the address of its archive.
"""

import pathlib
import re
import sys

APT_FOLDER = pathlib.Path("/etc/apt")


def codename():
    """The release's name, such as bookworm; third parties' suites are named otherwise."""
    for line in pathlib.Path("/etc/os-release").read_text().splitlines():
        if line.startswith("VERSION_CODENAME="):
            return line.partition("=")[2].strip('"')
    sys.exit("debiansources: /etc/os-release names no release")


def is_debians(entry):
    release = re.compile(rf"({codename()}|stable|oldstable)(-updates|-security|/updates|-proposed-updates)?$")
    keyring = entry.get("signed-by", "")
    of_key = not keyring or "debian-archive" in keyring or "BEGIN PGP" in keyring
    suites = entry.get("suites", "").split()
    return bool(suites) and all(map(release.match, suites)) and "main" in entry.get("components", "").split() and of_key


def deb822_entries(text):
    """The enabled paragraphs of a .sources file as dictionaries of field to text, continuation lines included."""
    for paragraph in re.split(r"\n[ \t]*\n", text):
        entry, last = {}, None
        for line in paragraph.splitlines():
            if line.startswith("#"):
                continue
            if line[:1] in (" ", "\t") and last:
                entry[last] += "\n" + line
            elif ":" in line:
                name, _, value = line.partition(":")
                last = name.strip().lower()
                entry[last] = value.strip()
        if entry and entry.get("enabled", "yes").lower() not in ("no", "false", "0"):
            yield entry


def line_entries(text):
    """The same of a .list file, one line each."""
    for line in text.splitlines():
        match = re.match(r"\s*(deb(?:-src)?)\s+(?:\[([^]]*)\]\s+)?(\S+)\s+(\S+)\s+([^#]*)", line)
        if match:
            kind, options, uri, suite, components = match.groups()
            entry = {"types": kind, "uris": uri, "suites": suite, "components": components}
            for option in (options or "").split():
                name, _, value = option.partition("=")
                entry[name.lower()] = value
            yield entry


def debian_entries():
    entries = []
    parts = APT_FOLDER / "sources.list.d"
    for file in [APT_FOLDER / "sources.list", *sorted(parts.glob("*.list"))]:
        if file.is_file():
            entries += line_entries(file.read_text(errors="replace"))
    for file in sorted(parts.glob("*.sources")):
        entries += deb822_entries(file.read_text(errors="replace"))
    return [entry for entry in entries if is_debians(entry)]


def source_paragraph(entry):
    """The entry's sources in main, as a paragraph of a .sources file."""
    names = {"signed-by": "Signed-By", "trusted": "Trusted", "check-valid-until": "Check-Valid-Until"}
    lines = ["Types: deb-src", f"URIs: {entry['uris']}", f"Suites: {entry['suites']}", "Components: main"]
    return "\n".join(lines + [f"{name}: {entry[key]}" for key, name in names.items() if key in entry])


def source_paragraphs():
    return list(dict.fromkeys(map(source_paragraph, debian_entries())))


def main():
    for entry in debian_entries():
        if {codename(), "stable"} & set(entry["suites"].split()):
            print(codename(), entry["uris"].split()[0])
            return
    sys.exit("debiansources: no entry for the release itself")


if __name__ == "__main__":
    main()
