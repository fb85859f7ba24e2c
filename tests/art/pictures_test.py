"""The pictures: every one that the program asks for is there, drawn in the set's style, and becomes a whole icon.

Runs from the top of the project: python3 tests/art/pictures_test.py
"""

import pathlib
import re
import struct
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree
import zlib

TOP = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path[:0] = [str(TOP / "art"), str(TOP / "tests" / "art")]

import pictureaudit  # noqa: E402
import render  # noqa: E402

SVG = "{http://www.w3.org/2000/svg}"
# As many as the window loads: 100 and the picture's place in the list of sections.
SECTIONS = range(100, 100 + int(re.search(r"kSectionIconCount = (\d+)", (TOP / "ui/windows/images.h").read_text())[1]))
ACTIONS = (205, 206, 209, 210)
PROGRESS = 300
PALETTE = {"#566880", "#ffffff", "#d3dce8", "#f5bd41", "#66c97c", "#ea6a5e", "#79bdf2"}
# Drawn for the sizes from 48 pixels on, on a finer grid.
LARGE = "art/program"
LARGE_SMALL = "art/programsmall"
# Background -> its colour, a contrast, and how many pixels of a picture have at least that contrast against it. What
# high contrast asks for, white and black, is held to 3; the blue of a selected row, to less.
BACKGROUNDS = {
    "white": ((255, 255, 255), 3, 45),
    "black": ((0, 0, 0), 3, 45),
    "dark grey": ((43, 43, 43), 3, 45),
    "blue": ((0, 120, 215), 1.9, 20),
}


def all_sources():
    return sorted(str(svg.relative_to(TOP).with_suffix("")) for svg in (TOP / "art").rglob("*.svg"))


def source(path):
    return TOP / f"{path}.svg"


def small_source(path):
    """The source of the sizes up to 32 pixels."""
    return source(LARGE_SMALL if path == LARGE else path)


def pixels(image):
    """The colours of a PNG of 8 bits a channel with alpha, as (red, green, blue, alpha) by rows."""
    assert image[:8] == b"\x89PNG\r\n\x1a\n"
    width, height, depth, kind = struct.unpack_from(">2I2B", image, 16)
    assert (depth, kind) == (8, 6), "no alpha"
    data, offset = b"", 8
    while offset < len(image):
        (length,) = struct.unpack_from(">I", image, offset)
        if image[offset + 4 : offset + 8] == b"IDAT":
            data += image[offset + 8 : offset + 8 + length]
        offset += length + 12
    data, row, found = zlib.decompress(data), bytearray(4 * width), []
    for line in range(height):
        begin = line * (4 * width + 1)
        row = unfiltered(data[begin], data[begin + 1 : begin + 1 + 4 * width], row)
        found += [tuple(row[i : i + 4]) for i in range(0, len(row), 4)]
    return found


def unfiltered(kind, line, above):
    row = bytearray(line)
    for i, value in enumerate(line):
        left, corner = (row[i - 4], above[i - 4]) if i >= 4 else (0, 0)
        up = above[i]
        row[i] = (value + (0, left, up, (left + up) // 2, nearest(left, up, corner))[kind]) % 256
    return row


def nearest(left, up, corner):
    guess = left + up - corner
    return min((left, up, corner), key=lambda value: abs(guess - value))


def brightness(colour):
    def linear(part):
        part /= 255
        return part / 12.92 if part <= 0.04045 else ((part + 0.055) / 1.055) ** 2.4

    return sum(share * linear(part) for share, part in zip((0.2126, 0.7152, 0.0722), colour))


def contrast(one, other):
    dark, bright = sorted((brightness(one), brightness(other)))
    return (bright + 0.05) / (dark + 0.05)


class Sources(unittest.TestCase):
    def test_every_number_that_the_program_asks_for_has_a_picture(self):
        self.assertEqual(set(pictureaudit.listed_pictures()), {1, *SECTIONS, *ACTIONS, PROGRESS})

    def test_no_picture_is_without_a_number(self):
        listed = [*pictureaudit.listed_pictures().values(), LARGE_SMALL]
        self.assertEqual(sorted(listed), all_sources())

    def test_every_picture_is_drawn_on_the_grid(self):
        for path in all_sources():
            with self.subTest(path):
                root = ElementTree.parse(source(path)).getroot()
                self.assertEqual(root.tag, SVG + "svg")
                self.assertEqual(root.get("viewBox"), "0 0 48 48" if path == LARGE else "0 0 16 16")

    def test_every_picture_uses_the_palette_alone(self):
        for path in all_sources():
            with self.subTest(path):
                for element in ElementTree.parse(source(path)).iter():
                    for name in ("fill", "stroke"):
                        self.assertIn(element.get(name, "none"), {"none", *PALETTE})

    def test_every_shape_says_how_it_is_filled(self):
        for path in all_sources():
            with self.subTest(path):
                for element in ElementTree.parse(source(path)).iter():
                    if element.tag not in (SVG + "svg", SVG + "g"):
                        self.assertIsNotNone(element.get("fill"))


class SmallestSize(unittest.TestCase):
    def setUp(self):
        self.pictures = {
            path: pixels(render.png(small_source(path), 16)) for path in pictureaudit.listed_pictures().values()
        }

    def test_no_two_pictures_are_alike(self):
        paths = list(self.pictures)
        for index, one in enumerate(paths):
            for other in paths[:index]:
                differing = sum(a != b for a, b in zip(self.pictures[one], self.pictures[other]))
                self.assertGreater(differing, 20, f"{one} and {other}")

    def test_every_picture_stands_out_from_every_background(self):
        for path, picture in self.pictures.items():
            solid = [colour[:3] for colour in picture if colour[3] > 200]
            for name, (background, wanted, least) in BACKGROUNDS.items():
                clear = sum(contrast(colour, background) >= wanted for colour in solid)
                self.assertGreaterEqual(clear, least, f"{path} on {name}")


class Icons(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.icon = pathlib.Path(folder.name) / "picture.ico"

    def made(self, number, path):
        """The images of the picture's icon file, made as the build makes it."""
        sizes = pictureaudit.expected_sizes(number)
        render.make_icon(self.icon, [(size, source(path) if size > 32 else small_source(path)) for size in sizes])
        return pictureaudit.images(self.icon.read_bytes())

    def alphas(self, size, image):
        """The alphas of an icon's image: a PNG from 256 pixels on, below a bitmap of 32 bits a pixel."""
        if size == 256:
            return {pixel[3] for pixel in pixels(image)}
        length, width, height, _, bits = struct.unpack_from("<3I2H", image)
        self.assertEqual((width, height, bits), (size, 2 * size, 32))
        return set(image[length + 3 : length + 4 * size * size : 4])

    def test_every_icon_holds_every_size_with_alpha(self):
        for number, path in pictureaudit.listed_pictures().items():
            with self.subTest(path):
                images = self.made(number, path)
                self.assertEqual(tuple(size for size, _ in images), pictureaudit.expected_sizes(number))
                for size, image in images:
                    self.assertLessEqual({0, 255}, self.alphas(size, image), size)

    def test_the_build_draws_the_program_small_and_large(self):
        text = (TOP / "art" / "CMakeLists.txt").read_text()
        drawn = re.search(r"^render_icon\(program (.+)\)$", text, re.MULTILINE).group(1).split()
        wanted = [f"{size}={'program' if size > 32 else 'programsmall'}" for size in pictureaudit.PROGRAM_SIZES]
        self.assertEqual(drawn, wanted)


if __name__ == "__main__":
    unittest.main()
