"""Renders a picture: render.py ICO SIZE=SVG... makes an icon file that holds each SVG at its size in pixels."""

import pathlib
import subprocess
import sys
import tempfile

# Up to here a picture is stored as a bitmap, which every system reads; a bitmap of 256 pixels would take 256 KB.
LARGEST_BITMAP = 48


def png(svg, size):
    """The picture at this size, as the bytes of a PNG file."""
    command = ["rsvg-convert", "--width", str(size), "--height", str(size), str(svg)]
    return subprocess.run(command, check=True, stdout=subprocess.PIPE).stdout


def make_icon(icon, pictures):
    """Writes the icon file of pairs of a size and an SVG file."""
    with tempfile.TemporaryDirectory() as folder:
        command = ["icotool", "--create", f"--output={icon}"]
        for size, svg in pictures:
            image = pathlib.Path(folder) / f"{size}.png"
            image.write_bytes(png(svg, size))
            command.append(str(image) if size <= LARGEST_BITMAP else f"--raw={image}")
        subprocess.run(command, check=True)


def main():
    icon, *pictures = sys.argv[1:]
    sizes = (picture.partition("=") for picture in pictures)
    make_icon(icon, [(int(size), svg) for size, _, svg in sizes])


if __name__ == "__main__":
    main()
