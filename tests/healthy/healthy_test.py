"""The healthy machine itself: its texts are well formed, every block names its source, the manual knows what is left.

Runs from the top of the project: python3 tests/healthy/healthy_test.py
"""

import pathlib
import re
import sys
import tempfile
import unittest

HERE = pathlib.Path(__file__).resolve().parent
TOP = HERE.parent.parent
sys.path.insert(0, str(HERE))
sys.path.insert(0, str(TOP / "data"))

import intoprefix  # noqa: E402
import problems  # noqa: E402


def lines_of(name):
    return (HERE / name).read_text(encoding="utf-8").splitlines()


def plain(markup):
    """What a reader sees of it, with one blank for every line end."""
    return " ".join(re.sub("<[^>]*>", "", markup).split())


class HealthyRegistry(unittest.TestCase):
    def test_every_key_stands_in_a_section_behind_the_remark_that_names_its_source(self):
        section = source = None
        for line in lines_of("healthy.reg"):
            if line.startswith("; ====="):
                section = source = None
            elif line.startswith("; source:"):
                source = line
            elif line.startswith("; ") and section is None:
                section = line
            elif line.startswith("["):
                self.assertTrue(section and source, line)

    def test_every_source_can_be_looked_up(self):
        page = r"(win32|drivers) [A-Za-z0-9]+(/[a-z0-9-]+)?"
        place = re.compile(page + r'|page \S+/\S+|text "[^"]{5,}"')
        known = re.compile(r"hive(cls|sft|sys|def)|wine\.inf|XP image|8\.1 image|10 listing|10 log|this program|rules")
        for source in self.sources():
            self.assertTrue(place.search(source) or known.search(source), source)
            self.assertNotRegex(source, r"own knowledge|public (code|text)", source)

    def test_what_is_made_up_has_its_form_from_somewhere(self):
        for source in self.sources():
            if "made up" in source:
                self.assertRegex(source, r'win32 |text "|rules', source)

    def sources(self):
        """The remarks that name a source, each on one line."""
        found, block = [], None
        for line in [*lines_of("healthy.reg"), ""]:
            if line.startswith("; source:"):
                block = line[2:]
            elif block and line.startswith("; "):
                block += line[1:]
            elif block:
                found.append(block)
                block = None
        return found

    def test_every_line_is_a_key_a_value_or_a_remark(self):
        form = re.compile(r'(@|"(?:[^"\\]|\\.)*")=((?:expand:|multi:)?"(?:[^"\\]|\\.)*"|dword:[0-9a-f]{8})')
        roots = ("[HKEY_CLASSES_ROOT\\", "[HKEY_CURRENT_USER\\", "[HKEY_LOCAL_MACHINE\\", "[HKEY_USERS\\")
        for number, line in enumerate(lines_of("healthy.reg")[1:], start=2):
            if line and not line.startswith(";"):
                is_key = line.startswith(roots) and line.endswith("]")
                self.assertTrue(is_key or form.fullmatch(line), f"{number}: {line}")

    def test_no_value_stands_twice_in_a_key(self):
        seen, key = set(), ""
        for line in lines_of("healthy.reg"):
            if line.startswith("["):
                key = line.lower()
            elif intoprefix.is_value(line):
                place = (key, intoprefix.value_name(line))
                self.assertNotIn(place, seen)
                seen.add(place)

    def test_the_files_are_full_paths_sorted_and_none_twice(self):
        paths = [line for line in lines_of("healthyfiles.txt") if line and not line.startswith(";")]
        self.assertEqual([path for path in paths if not path.startswith("C:\\") or "\\\\" in path], [])
        self.assertEqual(paths, sorted(paths, key=str.lower))
        self.assertEqual(len(paths), len({path.lower() for path in paths}))


class Expectations(unittest.TestCase):
    def read(self, name):
        return problems.read_problems((HERE / name).read_text(encoding="utf-8"))

    def test_what_is_still_reported_would_be_reported_without_the_list_too(self):
        self.assertEqual(set(self.read("stillreported.expected")) - set(self.read("unshielded.expected")), set())

    def reasons(self):
        """(section, reason, problem) for every problem that is left; the reason is empty where none stands above it."""
        found, section, reason, ended = [], "", "", True
        for line in lines_of("stillreported.expected"):
            if line.startswith("#"):
                reason = line[2:] if ended else reason + line[1:]
                ended = False
                continue
            ended = True
            if line.startswith("["):
                section, reason = line.strip("[]").split(" | ")[0], ""
            elif line:
                found.append((section, reason, line))
        return found

    def test_every_problem_that_is_left_has_a_reason_above_it(self):
        self.assertEqual([problem for _section, reason, problem in self.reasons() if not reason], [])

    def test_the_manual_names_every_reason_in_the_paragraph_of_its_section(self):
        for section, reason, problem in self.reasons():
            said = re.findall(r'"([^"]+)"', reason.partition("Manual: ")[2])
            self.assertTrue(said, problem)
            for words in said:
                self.assertIn(words, self.paragraph(section.rpartition(" - ")[2]))

    def test_the_manual_sends_the_user_of_a_64_bit_windows_to_the_64_bit_program(self):
        paragraph = self.paragraph("The 32-bit program on a 64-bit Windows")
        for words in ("use the 64-bit program", "says so when it starts", "take a component of the other half for a missing one"):
            self.assertIn(words, paragraph)

    def paragraph(self, heading):
        """What the manual says below a heading, without its tags and line ends."""
        manual = (TOP / "help" / "beforerepair.htm").read_text(encoding="ascii")
        parts = {}
        for part in manual.split("<h2")[1:]:
            title, _end, text = part.partition("</h2>")
            parts[plain(title.partition(">")[2]).lower()] = plain(text)
        return parts[heading.lower()]

    def test_the_manual_has_a_paragraph_for_every_section_with_something_left(self):
        manual = (TOP / "help" / "beforerepair.htm").read_text(encoding="ascii")
        headings = {plain(heading).lower() for heading in re.findall(r"<h2[^>]*>(.*?)</h2>", manual)}
        for problem in self.read("stillreported.expected"):
            self.assertIn(problem.section.rpartition(" - ")[2].lower(), headings)


class IntoAPrefix(unittest.TestCase):
    def test_leaves_out_what_the_prefix_has_in_any_letter_case_and_under_the_real_roots(self):
        existing = intoprefix.values_of('[HKEY_LOCAL_MACHINE\\Software\\Classes\\.TXT]\n@="x"\n"Content Type"="y"\n')
        text = '[HKEY_CLASSES_ROOT\\.txt]\n@="txtfile"\n"content type"="a"\n"PerceivedType"="text"\n'
        self.assertEqual(
            list(intoprefix.missing_part(text, existing)), ["[HKEY_CLASSES_ROOT\\.txt]", '"PerceivedType"="text"']
        )

    def test_writes_an_expandable_string_and_a_list_in_the_editors_form(self):
        for line, written in (
            ('"a"=expand:"%A%\\\\"', '"a"=hex(2):25,00,41,00,25,00,5c,00,00,00'),
            ('@=expand:"A"', "@=hex(2):41,00,00,00"),
            ('"a"=multi:"A"', '"a"=hex(7):41,00,00,00,00,00'),
            ('@="%A%"', '@="%A%"'),
            ('"b=expand:"="A"', '"b=expand:"="A"'),
        ):
            with self.subTest(line):
                self.assertEqual(intoprefix.in_the_editors_form(line), written)

    def test_makes_files_beside_what_is_there_in_another_letter_case(self):
        with tempfile.TemporaryDirectory() as folder:
            drive = pathlib.Path(folder)
            (drive / "windows").mkdir()
            listed = drive / "list"
            listed.write_text("; remark\nC:\\Windows\\System32\\a.dll\nC:\\Windows\\Media\\\n", encoding="utf-8")
            intoprefix.make_files(listed, drive)
            made = sorted(path.relative_to(drive).as_posix() for path in drive.rglob("*"))
            self.assertEqual(made, ["list", "windows", "windows/Media", "windows/System32", "windows/System32/a.dll"])


if __name__ == "__main__":
    unittest.main()
