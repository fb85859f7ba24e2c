"""Looks at what corvaltc wrote. SECTIONS is what "corvaltc sections" prints: no section may stand before another that it
lists earlier.

scanresult.py SECTIONS expected FRESH FOUND EXPECTED ENGLISH
    whether FOUND holds the problems of FRESH and exactly those of EXPECTED beside them (JSON, JSON, the format of
    brokenregistry.expected, english.lng)
scanresult.py SECTIONS same FIRST SECOND
    whether two JSON files say the same
scanresult.py SECTIONS report JSON REPORT
    whether REPORT is, byte for byte, the report of what JSON says
scanresult.py SECTIONS listing JSON LISTING
    the same for what is listed on standard output
scanresult.py SECTIONS rows JSON ROWS
    whether ROWS, as the window's reader prints them, are the rows of what JSON says
scanresult.py SECTIONS captions JSON CAPTION...
    whether JSON has exactly the sections of these captions, in this order
scanresult.py SECTIONS count JSON
    prints the number of problems
"""

import collections
import json
import re
import sys

ROOTS = {
    "HKCR": "HKEY_CLASSES_ROOT",
    "HKCU": "HKEY_CURRENT_USER",
    "HKLM": "HKEY_LOCAL_MACHINE",
    "HKU": "HKEY_USERS",
}
KINDS = {"key": 1, "value": 2}
# Order of the fields, as the file must have them.
SECTION_FIELDS = ["caption", "rootKey", "imageIndex", "childCount", "problems"]
PROBLEM_FIELDS = [
    "rootKey", "keyPath", "valueName", "valueData", "description", "kind", "imageIndex", "extra", "checkMark"
]  # fmt: skip


class Order:
    """The captions of all sections in the order of their run."""

    captions = []

    @classmethod
    def read(cls, path):
        lines = open(path, encoding="utf-8").read().splitlines()
        cls.captions = [line.split("\t")[1] for line in lines]


def load(path):
    with open(path, "rb") as file:
        content = file.read()
    assert b"\r" not in content, "a carriage return in the JSON"
    sections = json.loads(content.decode("utf-8"))["sections"]
    for section in sections:
        assert list(section) == SECTION_FIELDS, section
        assert section["childCount"] == len(section["problems"]) > 0, section["caption"]
        for problem in section["problems"]:
            assert list(problem) == PROBLEM_FIELDS, problem
    captions = [section["caption"] for section in sections]
    assert captions == [caption for caption in Order.captions if caption in captions], captions
    return sections


def load_texts(path):
    lines = (line.rstrip("\n").split("=", 1) for line in open(path, encoding="utf-8") if "=" in line)
    return {identifier: text for identifier, text in lines}


def unescape(text):
    return re.sub(r"\\u([0-9a-f]{4})", lambda match: chr(int(match.group(1), 16)), text)


def description(column, name, data, texts):
    if column.startswith('"'):
        return column[1:-1]
    match = re.fullmatch(r"(\d+)(?:\((.*)\))?", column, re.DOTALL)
    arguments = (match.group(2) or "").split("|") + ["", ""]
    first, second = (argument.replace("$name", name).replace("$data", data) for argument in arguments[:2])
    # Each insertion is one pass; every "&" of the result is doubled.
    return texts[match.group(1)].replace("%s2", second).replace("%s", first).replace("&", "&&")


def expected_problem(line, texts):
    kind, image, rest = line.split(" ", 2)
    place, name, data, text = (unescape(column.strip()) for column in re.split(r" \|(?= )", rest, maxsplit=3))
    root = re.match("[A-Z]+", place).group()
    return {
        "rootKey": ROOTS[root],
        "keyPath": place[len(root) :].lstrip(" "),
        "valueName": name,
        "valueData": data,
        "description": description(text, name, data, texts),
        "kind": KINDS[kind],
        "imageIndex": int(image),
        "extra": "",
        "checkMark": 1,
    }


def load_expected(path, texts):
    problems = collections.Counter()
    section = None
    for line in open(path, encoding="utf-8"):
        line = line.rstrip("\n")
        if line.startswith("["):
            caption, root, image = line.strip("[]").split(" | ")
            section = (caption, None if root == "null" else root, int(image))
        elif line and not line.startswith("#"):
            problems[key_of(section, expected_problem(line, texts))] += 1
    return problems


def key_of(section, problem):
    return (section, tuple(problem[field] for field in PROBLEM_FIELDS))


def counted(sections):
    return collections.Counter(
        key_of((section["caption"], section["rootKey"], section["imageIndex"]), problem)
        for section in sections
        for problem in section["problems"]
    )


def differences(expected, found):
    for what, problems in (("missing", expected - found), ("not expected", found - expected)):
        for (section, problem), count in sorted(problems.items(), key=repr):
            yield f"{what}, {count} times: {section} {ascii(dict(zip(PROBLEM_FIELDS, problem)))}"


def check_expected(fresh, found, expected, english):
    everything = counted(load(fresh)) + load_expected(expected, load_texts(english))
    return list(differences(everything, counted(load(found))))


def check_same(first, second):
    return [] if load(first) == load(second) else list(differences(counted(load(first)), counted(load(second))))


def ansi(text):
    """Code page 1252 for the few characters of the tests; what it lacks is a question mark."""
    units = text.encode("utf-16-le", "surrogatepass")
    return b"".join(
        units[i : i + 2].decode("utf-16-le", "replace").encode("cp1252", "replace") for i in range(0, len(units), 2)
    )


def check_report(found, report):
    rule = "-" * 70
    lines = ["Problems found on your computer: ", rule]
    total = 0
    for section in load(found):
        lines += [f"{section['caption']}({section['childCount']} Problems found)", ""]
        for problem in section["problems"]:
            place = (problem["rootKey"] or "HKEY_CURRENT_USER") + problem["keyPath"]
            lines += [f"Section: {place}", f"Reason : {problem['description']}", ""]
            total += 1
    lines += [rule, f"Problems found on your computer (Total {total} Problems):"]
    body = b"".join(ansi(line) + b"\r\n" for line in lines)
    pattern = rb"Report created on \d{1,2}/\d{1,2}/\d{4} by Tessaly Utilities\.\r\n\r\n" + re.escape(body)
    return report_faults(pattern, open(report, "rb").read(), body)


def report_faults(pattern, content, body):
    if re.fullmatch(pattern, content):
        return []
    pairs = zip(body.split(b"\r\n"), content.split(b"\r\n")[2:])
    return [f"expected {a!r}, found {b!r}" for a, b in pairs if a != b][:5] + [f"begins with {content[:80]!r}"]


def line_text(text):
    return "".join("\ufffd" if ord(c) < 0x20 or 0x7F <= ord(c) <= 0x9F or 0xD800 <= ord(c) <= 0xDFFF else c for c in text)


def check_listing(found, listing):
    blocks = []
    for section in load(found):
        lines = [f"{section['caption']} ({len(section['problems'])})"]
        for problem in section["problems"]:
            lines.append(f"  {problem['rootKey']}{problem['keyPath']}")
            if problem["kind"] == 2:
                lines.append("    Value: " + (problem["valueName"].strip("\0") or "(default)"))
            lines.append("    " + problem["description"].replace("&&", "&"))
        blocks.append("".join(line_text(line) + "\n" for line in lines))
    expected = "\n".join(blocks).encode("utf-8")
    content = open(listing, "rb").read()
    pairs = zip(expected.split(b"\n"), content.split(b"\n"))
    return [] if content == expected else [f"expected {a!r}, found {b!r}" for a, b in pairs if a != b][:5] + ["differs"]


def whole_characters(text):
    return text.encode("utf-16-le", "surrogatepass").decode("utf-16-le", "replace")


def check_rows(found, rows):
    expected = []
    for section in load(found):
        expected.append(("0", f"{section['caption']}  (problems: {len(section['problems'])})"))
        for problem in section["problems"]:
            place = f"Location: {problem['rootKey']}{problem['keyPath']}"
            expected.append(("1", place + " | " + problem["description"].replace("&&", "&")))
    expected = [(level, whole_characters(name)) for level, name in expected]
    lines = open(rows, encoding="utf-8", newline="\n").read().splitlines()
    fields = [line.split("\t") for line in lines]
    actual = [(field[2], field[8]) for field in fields]
    others = [line for line, field in zip(lines, fields) if field[1] != "outline item" or "checked" not in field[3]]
    pairs = zip(expected, actual)
    return [f"expected {a}, found {b}" for a, b in pairs if a != b][:5] + others + (
        [] if len(expected) == len(actual) else [f"expected {len(expected)} rows, found {len(actual)}"]
    )


def check_captions(found, *captions):
    actual = [section["caption"] for section in load(found)]
    return [] if actual == list(captions) else [f"expected {captions}, found {actual}"]


def main():
    sections, command, *arguments = sys.argv[1:]
    Order.read(sections)
    if command == "count":
        print(sum(len(section["problems"]) for section in load(*arguments)))
        return
    checks = {
        "expected": check_expected,
        "same": check_same,
        "report": check_report,
        "listing": check_listing,
        "rows": check_rows,
        "captions": check_captions,
    }
    faults = checks[command](*arguments)
    for fault in faults:
        print(fault)
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()
