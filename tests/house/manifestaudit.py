"""Holds programs to what their manifests must say: manifestaudit.py window|console PROGRAM... prints what is wrong.

The manifest is read out of the program's resources with wrestool, as Windows reads it.
"""

import subprocess
import sys
from xml.etree import ElementTree

ASSEMBLY_1 = "{urn:schemas-microsoft-com:asm.v1}"
ASSEMBLY_3 = "{urn:schemas-microsoft-com:asm.v3}"
COMPATIBILITY = "{urn:schemas-microsoft-com:compatibility.v1}"
SETTINGS_2005 = "{http://schemas.microsoft.com/SMI/2005/WindowsSettings}"
SETTINGS_2016 = "{http://schemas.microsoft.com/SMI/2016/WindowsSettings}"

LEVELS = {"window": "highestAvailable", "console": "asInvoker"}

SYSTEMS = {
    "{e2011457-1546-43c5-a5fe-008deee3d3f0}": "Windows Vista",
    "{35138b9a-5d96-4fbd-8e2d-a2440225f93a}": "Windows 7",
    "{4a2f28e3-53b9-4441-ba9c-d69d4a4a6e38}": "Windows 8",
    "{1f676c76-80e1-4239-95bb-83d0f6d0da78}": "Windows 8.1",
    "{8e0f7a12-bfb3-4fe8-b9a5-48fd50a15a9a}": "Windows 10 and later",
}

COMMON_CONTROLS = {
    "type": "win32",
    "name": "Microsoft.Windows.Common-Controls",
    "version": "6.0.0.0",
    "processorArchitecture": "*",
    "publicKeyToken": "6595b64144ccf1df",
    "language": "*",
}


def manifest(program):
    command = ["wrestool", "--extract", "--raw", "--type=24", "--name=1", str(program)]
    return subprocess.run(command, check=True, stdout=subprocess.PIPE).stdout


def texts(root, tag):
    return [(element.text or "").strip() for element in root.iter(tag)]


def faults(content, level):
    """What the manifest lacks, or says that it should not."""
    try:
        root = ElementTree.fromstring(content)
    except ElementTree.ParseError as error:
        return [f"no manifest that can be read: {error}"]
    found = []
    if root.tag != ASSEMBLY_1 + "assembly" or root.get("manifestVersion") != "1.0":
        found.append("the manifest is no assembly of version 1.0")
    levels = [element.get("level") for element in root.iter(ASSEMBLY_3 + "requestedExecutionLevel")]
    if levels != [level]:
        found.append(f"runs at the levels {levels} and not at {level}")
    listed = [element.get("Id") for element in root.iter(COMPATIBILITY + "supportedOS")]
    found += [f"does not support {name}" for identity, name in SYSTEMS.items() if identity not in listed]
    found += [f"supports the unknown system {identity}" for identity in listed if identity not in SYSTEMS]
    if texts(root, SETTINGS_2016 + "longPathAware") != ["true"]:
        found.append("does not take long paths")
    if any(element.tag.endswith("}activeCodePage") for element in root.iter()):
        found.append("changes what the ANSI code page is")
    return found


def window_faults(content):
    """What a program with windows lacks beside that."""
    root = ElementTree.fromstring(content)
    found = []
    path = f"{ASSEMBLY_1}dependency/{ASSEMBLY_1}dependentAssembly/{ASSEMBLY_1}assemblyIdentity"
    if COMMON_CONTROLS not in [element.attrib for element in root.findall(path)]:
        found.append("does not ask for version 6 of the common controls")
    if texts(root, SETTINGS_2005 + "dpiAware") != ["true"]:
        found.append("is not aware of the display's scale")
    if texts(root, SETTINGS_2016 + "dpiAwareness") != ["System"]:
        found.append("does not say that its scale is the system's")
    return found


def audit(kind, content):
    found = faults(content, LEVELS[kind])
    return found if found or kind != "window" else window_faults(content)


def main():
    kind, programs = sys.argv[1], sys.argv[2:]
    found = [f"{program}: {fault}" for program in programs for fault in audit(kind, manifest(program))]
    print("\n".join([*found, f"faults: {len(found)}"]))
    sys.exit(bool(found) or not programs)


if __name__ == "__main__":
    main()
