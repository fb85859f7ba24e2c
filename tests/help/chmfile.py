"""Reads a compiled help file: the names and sizes of what it holds, and what it says of itself.

Its directory and its "#SYSTEM" file are not compressed; the topics are, and are not read.
"""

import struct

HEADER = struct.Struct("<4s5L16s16s4QQ")
DIRECTORY_HEADER = struct.Struct("<4s11L")
CHUNK_HEADER = struct.Struct("<4sL")
LISTING_START = 20


class DamagedFile(Exception):
    pass


def expect(holds, what):
    if not holds:
        raise DamagedFile(what)


class ChmFile:
    """entries: name -> (section, offset, size) of every file in it."""

    def __init__(self, content):
        self.content = content
        expect(len(content) >= HEADER.size, "too short for a header")
        header = HEADER.unpack_from(content)
        expect(header[:2] == (b"ITSF", 3), "no header of a help file")
        total, directory, directory_size, self.data = header[9], header[10], header[11], header[12]
        # The file's size is the second number of the section that the header's first entry names.
        (size,) = struct.unpack_from("<Q", content, header[8] + 8)
        expect(size == len(content), f"is {len(content)} bytes long and says {size}")
        expect(total >= 16 and directory + directory_size <= len(content), "the directory is outside the file")
        self.entries = dict(self._listing(directory, directory_size))

    def _listing(self, start, size):
        header = DIRECTORY_HEADER.unpack_from(self.content, start)
        expect(header[0] == b"ITSP", "no header of a directory")
        header_size, chunk_size, count = header[2], header[4], header[11]
        expect(header_size + chunk_size * count == size, "the directory's size is not that of its chunks")
        for number in range(count):
            at = start + header_size + number * chunk_size
            tag, free = CHUNK_HEADER.unpack_from(self.content, at)
            if tag == b"PMGL":
                yield from self._entries(at + LISTING_START, at + chunk_size - free)
            else:
                expect(tag == b"PMGI", f"a chunk of an unknown kind: {tag}")

    def _entries(self, at, end):
        while at < end:
            length, at = self._number(at)
            name = self.content[at : at + length].decode("utf-8")
            at += length
            numbers = []
            for _ in range(3):
                number, at = self._number(at)
                numbers.append(number)
            yield name, tuple(numbers)
        expect(at == end, "an entry goes past its chunk")

    def _number(self, at):
        """Seven bits a byte, the highest first; the eighth bit says that another byte follows."""
        number = 0
        while True:
            byte = self.content[at]
            number = number << 7 | byte & 0x7F
            at += 1
            if byte < 0x80:
                return number, at

    def system(self):
        """What "#SYSTEM" says: code -> text."""
        section, offset, size = self.entries["/#SYSTEM"]
        expect(section == 0, "#SYSTEM is compressed")
        at = self.data + offset + 4
        end = self.data + offset + size
        found = {}
        while at < end:
            code, length = struct.unpack_from("<2H", self.content, at)
            found[code] = self.content[at + 4 : at + 4 + length].split(b"\0")[0].decode("latin-1")
            at += 4 + length
        return found
