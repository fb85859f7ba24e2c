"""Every language file against the English one: the same texts, with the same places for what the program inserts.

Runs from anywhere: python3 tests/languages/languages_test.py
"""

import pathlib
import re
import unittest

LANGUAGES = pathlib.Path(__file__).resolve().parent.parent.parent / "languages"
MARK = b"\xef\xbb\xbf"
NO_BREAK_SPACE = "\u00a0"
EXPECTED = """chinese-simplified chinese-traditional dutch english french german italian japanese korean polish
    portuguese-brazil russian spanish turkish ukrainian""".split()
# What is the same in every language, or may happen to be.
SAME_EVERYWHERE = {"OK", "Version %s", "Backup: %s"}


def texts_of(path):
    """Number -> text, as the program reads them: lines without an equals sign mean nothing."""
    found = {}
    for line in path.read_bytes().decode("utf-8-sig").splitlines():
        number, equals, text = line.partition("=")
        if equals:
            if number in found:
                raise ValueError(f"{path.name}: {number} stands there twice")
            found[number] = text
    return found


def placeholders(text):
    return sorted(re.findall(r"%s2|%s|%.?", text))


def leading_blanks(text):
    return re.match(f"[ {NO_BREAK_SPACE}]*", text)[0]


class Languages(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.files = sorted(LANGUAGES.glob("*.lng"))
        cls.english = texts_of(LANGUAGES / "english.lng")

    def each(self):
        for path in self.files:
            with self.subTest(path.stem):
                yield path, texts_of(path)

    def test_all_languages_are_there(self):
        self.assertEqual([path.stem for path in self.files], EXPECTED)

    def test_every_shipped_language_can_be_chosen_at_the_first_start(self):
        source = (LANGUAGES.parent / "core" / "displaylanguages.cpp").read_text()
        named = set(re.findall(r'u"([a-z-]+)\.lng"', source)) | {"english"}
        self.assertEqual(sorted(named), EXPECTED)

    def test_every_file_but_the_english_begins_with_the_mark_of_utf8(self):
        for path in self.files:
            with self.subTest(path.stem):
                self.assertTrue(path.stem == "english" or path.read_bytes().startswith(MARK))

    def test_every_text_is_translated_and_none_is_left_over(self):
        for _, texts in self.each():
            self.assertEqual(sorted(texts), sorted(self.english))

    def test_the_places_for_insertions_are_the_same(self):
        for _, texts in self.each():
            for number, text in self.english.items():
                self.assertEqual(placeholders(texts[number]), placeholders(text), number)

    def test_leading_blanks_are_the_same(self):
        for _, texts in self.each():
            for number, text in self.english.items():
                self.assertEqual(leading_blanks(texts[number]), leading_blanks(text), number)

    def test_no_text_ends_in_a_blank(self):
        for _, texts in self.each():
            for number, text in texts.items():
                self.assertEqual(text, text.rstrip(), number)

    def test_ampersands_are_the_same(self):
        for _, texts in self.each():
            for number, text in self.english.items():
                self.assertEqual(texts[number].count("&"), text.count("&"), number)

    def test_a_sentence_is_not_left_in_english(self):
        for path, texts in self.each():
            if path.stem == "english":
                continue
            for number, text in self.english.items():
                if " " in text and text not in SAME_EVERYWHERE:
                    self.assertNotEqual(texts[number], text, number)

    def test_what_is_typed_is_the_same(self):
        typed = re.compile(r"--[a-z-]+|corvaltc [a-z]+|\bpurge\b|\bFILE\b|\bENTRY\b|/\?|UTF-8|JSON", re.ASCII)
        for _, texts in self.each():
            for number, text in self.english.items():
                self.assertEqual(sorted(typed.findall(texts[number])), sorted(typed.findall(text)), number)

    def test_texts_that_differ_in_english_differ_everywhere(self):
        for _, texts in self.each():
            for pair in (("11024", "11025"), ("11029", "11030"), ("11031", "11034"), ("40034", "40035")):
                self.assertNotEqual(*(texts[number] for number in pair))


if __name__ == "__main__":
    unittest.main()
