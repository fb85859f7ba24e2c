"""What of others is inside the programs and the installer: one list, for the notices and the bill of materials.

    components.py notices TARGET                     every component with its licence, as a text
    components.py sbom TARGET VERSION COMMIT SECONDS FILE...   SPDX 2.3 (JSON) over the packages that are given

Versions and licences are read from the Debian packages that the build took the components from.
"""

import dataclasses
import hashlib
import json
import pathlib
import re
import subprocess
import sys
import time

TOP = pathlib.Path(__file__).resolve().parent.parent
PUGIXML = TOP / "build" / "_sources" / "pugixml" / "debian"


@dataclasses.dataclass
class Component:
    name: str
    package: str  # the Debian package; empty for the unpacked source package of pugixml
    licence: str  # SPDX identifier
    purpose: str
    in_programs: bool = True  # else in the installer

    def version(self):
        if not self.package:
            first = (PUGIXML / "changelog").read_text(encoding="utf-8").splitlines()[0]
            full = re.search(r"\((.+?)\)", first)[1]
        else:
            command = ["dpkg-query", "-W", "-f=${Version}", self.package]
            full = subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout
        # The upstream's part: without an epoch, Debian's revision and its mark for a repacked source.
        return re.sub(r"\+dfsg\d*$", "", full.rpartition(":")[2].partition("-")[0])

    def notice(self):
        path = PUGIXML / "copyright" if not self.package else pathlib.Path("/usr/share/doc", self.package, "copyright")
        return path.read_text(encoding="utf-8")


COMPONENTS = [
    Component("zlib", "libz-mingw-w64-dev", "Zlib", "inflates the packed data files"),
    Component("pugixml", "", "MIT", "reads the adware catalogue"),
    Component("GCC runtime", "gcc-mingw-w64-base", "GPL-3.0-or-later WITH GCC-exception-3.1", "the C++ library"),
    Component("mingw-w64", "mingw-w64-common", "ZPL-2.1 AND MIT AND BSD-3-Clause", "the C library and the threads"),
    Component("NSIS", "nsis-common", "Zlib AND CPL-1.0", "the installer alone", in_programs=False),
]


def notices():
    parts = ["Corvalt contains software of others. What it is used for, and its licence:\r\n"]
    for component in COMPONENTS:
        title = f"{component.name} {component.version()}: {component.purpose}"
        body = component.notice().replace("\r\n", "\n").replace("\n", "\r\n")
        parts.append(f"{'=' * 78}\r\n{title}\r\n{'=' * 78}\r\n\r\n{body.rstrip()}\r\n")
    return "\r\n".join(parts)


def identifier(name):
    return "SPDXRef-" + re.sub(r"[^A-Za-z0-9.-]", "-", name)


def package_entry(name, version, licence, supplier):
    return {
        "SPDXID": identifier(name),
        "name": name,
        "versionInfo": version,
        "supplier": supplier,
        "downloadLocation": "NOASSERTION",
        "filesAnalyzed": False,
        "licenseConcluded": licence,
        "licenseDeclared": licence,
        "copyrightText": "NOASSERTION",
    }


def file_entry(path):
    content = path.read_bytes()
    checksums = [(name, hashlib.new(name.lower(), content).hexdigest()) for name in ("SHA1", "SHA256")]
    return {
        "SPDXID": identifier(path.name),
        "fileName": f"./{path.name}",
        "checksums": [{"algorithm": name, "checksumValue": value} for name, value in checksums],
        "licenseConcluded": "NOASSERTION",
        "copyrightText": "NOASSERTION",
    }


def bill_of_materials(version, commit, seconds, files):
    product = package_entry("Corvalt", version, "NOASSERTION", "Organization: TessalySoft")
    others = [
        package_entry(component.name, component.version(), component.licence, "NOASSERTION")
        for component in COMPONENTS
    ]
    entries = [file_entry(pathlib.Path(name)) for name in sorted(files)]
    document = "SPDXRef-DOCUMENT"
    relations = [(document, "DESCRIBES", product["SPDXID"])]
    relations += [(product["SPDXID"], "CONTAINS", entry["SPDXID"]) for entry in entries]
    setup = [entry["SPDXID"] for entry in entries if entry["fileName"].endswith("-setup.exe")]
    for component in COMPONENTS:
        if component.in_programs:
            relations.append((product["SPDXID"], "STATIC_LINK", identifier(component.name)))
        else:
            relations += [(entry, "CONTAINS", identifier(component.name)) for entry in setup]
    return {
        "spdxVersion": "SPDX-2.3",
        "dataLicense": "CC0-1.0",
        "SPDXID": document,
        "name": f"Corvalt-{version}",
        "documentNamespace": f"https://www.tessaly.example/spdx/corvalt-{version}-{commit}",
        "creationInfo": {
            "created": time.strftime("%Y-%m-%dT%H:%M:%SZ", time.gmtime(int(seconds))),
            "creators": ["Organization: TessalySoft"],
        },
        "packages": [product, *others],
        "files": entries,
        "relationships": [
            {"spdxElementId": first, "relationshipType": kind, "relatedSpdxElement": second}
            for first, kind, second in relations
        ],
    }


def main():
    mode, target = sys.argv[1], pathlib.Path(sys.argv[2])
    if mode == "notices":
        target.write_bytes(notices().encode("utf-8"))
    else:
        document = bill_of_materials(*sys.argv[3:6], sys.argv[6:])
        target.write_text(json.dumps(document, indent=2, ensure_ascii=False) + "\n", encoding="utf-8")


if __name__ == "__main__":
    main()
