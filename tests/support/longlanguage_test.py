"""The generated language is as long as it claims, and inserts what the English one inserts."""

import pathlib
import re
import unittest

import longlanguage

ENGLISH = pathlib.Path(__file__).resolve().parent.parent.parent / "languages" / "english.lng"


def texts(content):
    return dict(line.split("=", 1) for line in content.splitlines() if "=" in line)


class LongLanguage(unittest.TestCase):
    def setUp(self):
        english = ENGLISH.read_text(encoding="utf-8")
        self.english = texts(english)
        self.long = texts(longlanguage.long_language(english))

    def test_it_has_every_text(self):
        self.assertGreater(len(self.english), 100)
        self.assertEqual(self.long.keys(), self.english.keys())

    def test_every_text_is_longer_by_two_fifths(self):
        for identifier, text in self.english.items():
            self.assertGreaterEqual(len(self.long[identifier]), 1.4 * len(text), identifier)

    def test_every_text_inserts_the_same(self):
        for identifier, text in self.english.items():
            self.assertEqual(sorted(re.findall("%s2?", self.long[identifier])), sorted(re.findall("%s2?", text)))


if __name__ == "__main__":
    unittest.main()
