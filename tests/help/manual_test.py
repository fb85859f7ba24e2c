"""The manual: its links lead somewhere, its captions are the program's, and it explains what the program has.

Runs from the top of the project: python3 tests/help/manual_test.py
"""

import html.parser
import pathlib
import re
import struct
import unittest
import urllib.parse

TOP = pathlib.Path(__file__).resolve().parent.parent.parent
HELP = TOP / "help"
FIRST_TOPIC = "Registry_Cleaner.htm"
VOID = {"meta", "link", "img", "br", "param", "hr"}
LARGEST_PICTURE = 40 * 1024


def one_line(text):
    return " ".join(text.split())


class Page(html.parser.HTMLParser):
    """A page of the manual, or one of its two lists: what it links to, shows, names and says."""

    def __init__(self, path):
        super().__init__()
        self.faults = []
        self.links = []
        self.pictures = []
        self.anchors = []
        self.captions = {"ui": [], "section": []}
        self.entries = []  # of a contents or index list: (name, page)
        self.cells = []  # of tables: a list for each row
        self.title = self.heading = None
        self._open = []
        self._text = {}
        self.source = path.read_bytes()
        self.feed(self.source.decode("ascii"))
        self.close()
        self.faults += [f"<{tag}> is not closed" for tag, _ in self._open]

    def handle_starttag(self, tag, attributes):
        values = dict(attributes)
        if len(values) != len(attributes):
            self.faults.append(f"<{tag}> says something twice")
        self.anchors += [values["id"]] if "id" in values else []
        if tag in ("a", "link"):
            self.links.append(values["href"])
        elif tag == "img":
            self.pictures.append(values)
        elif tag == "tr":
            self.cells.append([])
        elif tag == "object":
            self.entries.append({})
        elif tag == "param":
            self.entries[-1][values["name"]] = values["value"]
        if tag not in VOID:
            self._open.append((tag, values))
            self._text[len(self._open)] = ""

    def handle_startendtag(self, tag, attributes):
        self.faults.append(f"<{tag}/> is no HTML 4")

    def handle_data(self, data):
        if "<" in data or ">" in data:
            self.faults.append(f"a bare bracket: {data}")
        for depth in range(1, len(self._open) + 1):
            self._text[depth] += data

    def handle_endtag(self, tag):
        if not self._open or self._open[-1][0] != tag:
            self.faults.append(f"</{tag}> closes nothing, line {self.getpos()[0]}")
            return
        text = one_line(self._text[len(self._open)])
        values = self._open.pop()[1]
        if tag == "b":
            self.captions[values["class"]].append(text)
        elif tag == "title":
            self.title = text
        elif tag == "h1":
            self.heading = text
        elif tag in ("td", "th"):
            self.cells[-1].append(text)


def topics():
    return {path.name: Page(path) for path in HELP.glob("*.htm")}


def texts():
    """The program's English texts as they are shown."""
    lines = (TOP / "languages" / "english.lng").read_text(encoding="utf-8").splitlines()
    return {line.split("=", 1)[1].replace("&", "") for line in lines if re.match(r"\d+=", line)}


def sections():
    """The captions of the Sections tree's leaves by their codes, in its order."""
    table = (TOP / "scan" / "catalogue.cpp").read_text()
    return {int(code): caption for code, caption in re.findall(r'\{(\d+), u"([^"]*)"', table)}


def groups():
    return re.findall(r'TSectionGroup \w+ = \{\d+, u"([^"]*)"', (TOP / "scan" / "catalogue.h").read_text())


def project():
    """The sections of the project file: name -> its lines."""
    found = {}
    for line in (HELP / "help.hhp").read_text(encoding="ascii").splitlines():
        if line.startswith("["):
            found[line.strip("[]")] = lines = []
        elif line:
            lines.append(line)
    return found


def options():
    return dict(line.split("=", 1) for line in project()["OPTIONS"])


def readme_tables():
    """The rows of README.md's tables, without the marks of the format."""
    lines = (TOP / "README.md").read_text(encoding="utf-8").splitlines()
    rows = [line.strip("|").replace("`", "").split("|") for line in lines if line.startswith("|")]
    return [[one_line(cell) for cell in row] for row in rows]


def bare(commands):
    """The readme joins short commands by commas; the manual gives each a line and its program."""
    return re.sub(r"corvaltc|[^\w\[\]-]", "", commands)


class Manual(unittest.TestCase):
    def setUp(self):
        self.topics = topics()
        self.contents = Page(HELP / "help.hhc")
        self.index = Page(HELP / "help.hhk")

    def assertLeadsSomewhere(self, link, page):
        target = urllib.parse.urlparse(link)
        self.assertEqual((target.scheme, target.netloc), ("", ""), link)
        name = target.path or page
        self.assertTrue((HELP / name).is_file(), f"{page}: {link}")
        # The viewer asks for the name as it is written.
        self.assertIn(name, [path.relative_to(HELP).as_posix() for path in HELP.rglob("*")])
        if target.fragment:
            self.assertIn(target.fragment, self.topics[name].anchors, f"{page}: {link}")

    def test_there_are_topics(self):
        self.assertGreaterEqual(len(self.topics), 7)

    def test_every_page_is_well_formed(self):
        pages = {**self.topics, "contents": self.contents, "index": self.index}
        for name, page in pages.items():
            self.assertEqual(page.faults, [], name)
            self.assertEqual(len(page.anchors), len(set(page.anchors)), f"{name}: an id is given twice")

    def test_every_topic_has_its_title_for_a_heading(self):
        for name, page in self.topics.items():
            self.assertTrue(page.title, name)
            self.assertEqual(page.title, page.heading)

    def test_every_topic_says_how_it_is_encoded_and_runs_nothing(self):
        for name, page in self.topics.items():
            self.assertIn(b'content="text/html; charset=utf-8"', page.source, name)
            self.assertNotRegex(page.source.decode("ascii"), r"(?i)<script|javascript:| on\w+=", name)

    def test_every_link_leads_somewhere(self):
        for name, page in self.topics.items():
            self.assertIn("help.css", page.links)
            for link in page.links:
                self.assertLeadsSomewhere(link, name)

    def test_every_picture_is_there_small_and_as_large_as_the_page_says(self):
        for name, page in self.topics.items():
            for picture in page.pictures:
                self.assertLeadsSomewhere(picture["src"], name)
                self.assertTrue(picture["alt"], name)
                content = (HELP / picture["src"]).read_bytes()
                self.assertLess(len(content), LARGEST_PICTURE, picture["src"])
                size = struct.unpack_from(">2L", content, 16)
                self.assertEqual((int(picture["width"]), int(picture["height"])), size, picture["src"])

    def test_every_picture_is_shown(self):
        shown = {picture["src"] for page in self.topics.values() for picture in page.pictures}
        self.assertEqual(shown, {path.relative_to(HELP).as_posix() for path in HELP.rglob("*.png")})

    def test_the_contents_list_every_topic_once_by_its_title(self):
        listed = [(entry["Local"], entry["Name"]) for entry in self.contents.entries]
        self.assertEqual(listed[0][0], FIRST_TOPIC)
        self.assertEqual(sorted(listed), sorted((name, page.title) for name, page in self.topics.items()))

    def test_every_topic_is_reached_from_the_first(self):
        reached, left = set(), [FIRST_TOPIC]
        while left:
            name = left.pop()
            if name not in reached:
                reached.add(name)
                left += [link.split("#")[0] for link in self.topics[name].links if link.split("#")[0] in self.topics]
        self.assertEqual(reached, set(self.topics))

    def test_the_index_is_sorted_and_leads_somewhere(self):
        names = [entry["Name"] for entry in self.index.entries]
        self.assertEqual(names, sorted(names, key=str.lower))
        self.assertEqual(len(names), len(set(names)))
        for entry in self.index.entries:
            self.assertLeadsSomewhere(entry["Local"], "help.hhk")

    def test_the_project_names_every_file(self):
        self.assertEqual(options()["Contents file"], "help.hhc")
        self.assertEqual(options()["Index file"], "help.hhk")
        listed = project()["FILES"]
        self.assertEqual(len(listed), len(set(listed)))
        wanted = [path for path in HELP.rglob("*") if path.suffix in (".htm", ".css", ".png")]
        self.assertEqual(sorted(listed), sorted(path.relative_to(HELP).as_posix() for path in wanted))

    def test_the_program_opens_what_the_project_makes(self):
        source = (TOP / "ui" / "suitelinks.cpp").read_text()
        self.assertIn(f'u"\\\\{options()["Compiled file"]}", u"/{options()["Default topic"]}"', source)
        self.assertEqual(options()["Default topic"], FIRST_TOPIC)

    def test_every_caption_is_one_that_the_program_shows(self):
        shown = texts()
        self.assertIn("Repair your registry", shown)
        for name, page in self.topics.items():
            for caption in page.captions["ui"]:
                self.assertIn(caption, shown, name)

    def test_every_section_named_is_one_of_the_tree(self):
        known = {*sections().values(), *groups()}
        for name, page in self.topics.items():
            for caption in page.captions["section"]:
                self.assertIn(caption, known, name)

    def test_all_sections_are_explained_in_the_order_of_the_tree(self):
        self.assertGreaterEqual(len(sections()), 22)
        page = self.topics["scanning.htm"]
        rows = [row for row in page.cells if row and row[0] in sections().values()]
        self.assertEqual([row[0] for row in rows], list(sections().values()))
        for caption, explanation in rows:
            self.assertGreater(len(explanation), 25, caption)
        anchors = [anchor for anchor in page.anchors if re.fullmatch(r"section\d+", anchor)]
        self.assertEqual(anchors, [f"section{code}" for code in sections()])

    def test_every_section_tells_what_it_may_get_wrong(self):
        looks_for, gets_wrong = self.topics["scanning.htm"], self.topics["beforerepair.htm"]
        back = [link for link in gets_wrong.links if link.startswith("scanning.htm#section")]
        self.assertEqual(back, [f"scanning.htm#section{code}" for code in sections()])
        self.assertEqual(len([link for link in looks_for.links if link.startswith("beforerepair.htm#")]), len(sections()))

    def test_the_index_has_every_section(self):
        places = {entry["Name"]: entry["Local"] for entry in self.index.entries}
        for code, caption in sections().items():
            self.assertEqual(places.get(caption), f"scanning.htm#section{code}")

    def test_the_console_program_is_told_as_in_the_readme(self):
        told = self.topics["console.htm"].cells
        exit_codes = [row for row in readme_tables() if len(row) == 5 and (row[0].isdigit() or row[0] == "code")]
        self.assertEqual(len(exit_codes), 6)
        self.assertEqual([row for row in told if len(row) == 5][1:], exit_codes[1:])
        commands = [row for row in readme_tables() if len(row) == 2 and row[0].startswith("corvaltc ")]
        self.assertEqual(len(commands), 8)
        explanations = {row[1]: row[0] for row in told if len(row) == 2}
        for command, explanation in commands:
            self.assertEqual(bare(explanations[explanation]), bare(command))


if __name__ == "__main__":
    unittest.main()
