"""Writes the three manifests of the Windows package manager: wingetmanifests.py FOLDER VERSION DATE INSTALLER.

DATE is the release's, as YYYY-MM-DD. INSTALLER is the finished installer: its name is the last part of the address that it will be
downloaded from, its hash is in the manifest.
"""

import hashlib
import pathlib
import sys

IDENTIFIER = "TessalySoft.Corvalt"
MANIFEST_VERSION = "1.6.0"
SITE = "https://www.tessaly.example/utilities/"


def document(kind, version, lines):
    schema = f"# yaml-language-server: $schema=https://aka.ms/winget-manifest.{kind}.{MANIFEST_VERSION}.schema.json"
    head = [schema, "", f"PackageIdentifier: {IDENTIFIER}", f"PackageVersion: {version}"]
    return "\n".join([*head, *lines, f"ManifestType: {kind}", f"ManifestVersion: {MANIFEST_VERSION}"]) + "\n"


def installer_lines(date, installer):
    digest = hashlib.sha256(installer.read_bytes()).hexdigest().upper()
    lines = [
        "InstallerLocale: en-US",
        "Platform:",
        "- Windows.Desktop",
        "InstallerType: nullsoft",
        "Scope: machine",
        "UpgradeBehavior: install",
        "ElevationRequirement: elevatesSelf",
        f"ReleaseDate: {date}",
        "Installers:",
    ]
    # One installer for both kinds.
    for architecture in ("x64", "x86"):
        lines += [
            f"- Architecture: {architecture}",
            f"  InstallerUrl: {SITE}{installer.name}",
            f"  InstallerSha256: {digest}",
        ]
    return lines


LOCALE_LINES = [
    "PackageLocale: en-US",
    "Publisher: TessalySoft",
    f"PublisherUrl: {SITE}",
    "PackageName: Corvalt Registry Cleaner",
    f"PackageUrl: {SITE}",
    "License: Proprietary",
    "ShortDescription: Finds registry entries that point to things that no longer exist, and removes them with a backup.",
    "Tags:",
    "- cleanup",
    "- registry",
    "- registry-cleaner",
]


def main():
    folder, version, date, installer = pathlib.Path(sys.argv[1]), sys.argv[2], sys.argv[3], pathlib.Path(sys.argv[4])
    folder.mkdir(parents=True, exist_ok=True)
    manifests = {
        f"{IDENTIFIER}.yaml": ("version", ["DefaultLocale: en-US"]),
        f"{IDENTIFIER}.installer.yaml": ("installer", installer_lines(date, installer)),
        f"{IDENTIFIER}.locale.en-US.yaml": ("defaultLocale", LOCALE_LINES),
    }
    for name, (kind, lines) in manifests.items():
        (folder / name).write_text(document(kind, version, lines), encoding="utf-8", newline="\n")


if __name__ == "__main__":
    main()
