"""Every link and picture of the documents leads to something that the project has.

Runs from the top of the project: python3 tests/house/links_test.py
"""

import pathlib
import re
import subprocess
import tempfile
import unittest
import urllib.parse

TOP = pathlib.Path(__file__).resolve().parent.parent.parent

FENCE = re.compile(r"^(```|~~~).*?^\1", re.M | re.S)
CODE = re.compile(r"`[^`\n]*`")
# [text](target) and ![text](target "title"), and [name]: target
INLINE = re.compile(r"\]\(\s*<?([^)\s>]+)>?(?:\s+\"[^\"]*\")?\s*\)")
REFERENCE = re.compile(r"^ {0,3}\[[^\]]+\]:\s+<?(\S+?)>?$", re.M)
HEADING = re.compile(r"^#{1,6}\s+(.*?)\s*#*$", re.M)


def documents(top):
    """The project's own, not those that a build has unpacked."""
    listed = subprocess.run(
        ["git", "-C", str(top), "ls-files", "-z", "--cached", "--others", "--exclude-standard", "*.md"],
        check=True, stdout=subprocess.PIPE, text=True,
    ).stdout
    return [top / name for name in listed.split("\0") if name and (top / name).is_file()]


def targets(text):
    plain = CODE.sub("", FENCE.sub("", text))
    return INLINE.findall(plain) + REFERENCE.findall(plain)


def anchors(text):
    """The headings as links name them: lower case, hyphens for blanks, no other signs."""
    headings = HEADING.findall(FENCE.sub("", text))
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}


def is_there(path):
    """With the letter case that is written: the project is read on systems that tell it apart."""
    return path.exists() and path.name in (entry.name for entry in path.parent.iterdir())


def faults(document):
    found = []
    text = document.read_text(encoding="utf-8")
    for target in targets(text):
        link = urllib.parse.urlparse(target)
        if link.scheme or link.netloc:
            continue
        path = document.parent / urllib.parse.unquote(link.path) if link.path else document
        if link.path.startswith("/") or not is_there(path.resolve()):
            found.append(f"{document.name}: {target}: no such file")
        elif link.fragment and path.suffix == ".md" and link.fragment not in anchors(path.read_text(encoding="utf-8")):
            found.append(f"{document.name}: {target}: no such heading")
    return found


class Links(unittest.TestCase):
    def test_every_link_of_every_document_leads_somewhere(self):
        found = documents(TOP)
        names = {path.relative_to(TOP).as_posix() for path in found}
        self.assertLessEqual({"README.md", "CONTRIBUTING.md", "docs/architecture.md"}, names)
        self.assertEqual([fault for path in found for fault in faults(path)], [])

    def test_every_picture_of_the_documents_is_shown(self):
        shown = {
            (path.parent / target).resolve()
            for path in documents(TOP)
            for target in targets(path.read_text(encoding="utf-8"))
        }
        pictures = [path for path in (TOP / "docs").rglob("*") if path.suffix in (".png", ".svg", ".jpg")]
        self.assertGreaterEqual(len(pictures), 2)
        self.assertEqual([path.name for path in pictures if path.resolve() not in shown], [])


class Faults(unittest.TestCase):
    """Proves that a broken link is found."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        (self.folder / "other.md").write_text("# The Way, of data\n")
        (self.folder / "picture.png").write_bytes(b"")

    def faults_of(self, text):
        document = self.folder / "document.md"
        document.write_text(text)
        return faults(document)

    def test_what_is_there_is_no_fault(self):
        text = '[a](other.md) ![b](picture.png "c") [d](other.md#the-way-of-data) [e](#own)\n# Own\n\n[f]: other.md\n'
        self.assertEqual(self.faults_of(text), [])

    def test_a_link_into_the_net_is_not_followed(self):
        self.assertEqual(self.faults_of("[a](https://example.org/nothing) [b](mailto:nobody@example.org)"), [])

    def test_what_stands_in_code_is_no_link(self):
        self.assertEqual(self.faults_of("`[a](gone.md)`\n```\n[b](gone.md)\n```\n"), [])

    def test_a_missing_file(self):
        self.assertEqual(self.faults_of("[a](gone.md)"), ["document.md: gone.md: no such file"])

    def test_a_missing_picture(self):
        self.assertEqual(self.faults_of("![a](gone.png)"), ["document.md: gone.png: no such file"])

    def test_a_missing_file_of_a_reference(self):
        self.assertEqual(self.faults_of("[a][b]\n\n[b]: gone.md\n"), ["document.md: gone.md: no such file"])

    def test_another_letter_case(self):
        self.assertEqual(self.faults_of("[a](Other.md)"), ["document.md: Other.md: no such file"])

    def test_a_path_from_the_root(self):
        self.assertEqual(len(self.faults_of(f"[a]({self.folder}/other.md)")), 1)

    def test_a_missing_heading(self):
        self.assertEqual(self.faults_of("[a](other.md#gone)"), ["document.md: other.md#gone: no such heading"])


if __name__ == "__main__":
    unittest.main()
