"""Makes a screenshot smaller: converts a PNG of few colours to one with a palette."""

import struct
import zlib

SIGNATURE = b"\x89PNG\r\n\x1a\n"
CHANNELS = {2: 3, 6: 4}

# A picture with too many colours is reduced to 16 shades of each channel. They include the colours
# of the pages, so that only the edges of letters change.
SHADES = bytes(17 * round(value / 17) for value in range(256))


def with_palette(png):
    """The same picture with a palette of at most 256 colours. Raises ValueError if it has more."""
    width, height, rows = _pixels(png)
    colors = _colors(rows)
    if len(colors) > 256:
        rows = [row.translate(SHADES) for row in rows]
        colors = _colors(rows)
    if len(colors) > 256:
        raise ValueError("a picture of %d colours" % len(colors))
    place = {color: index for index, color in enumerate(colors)}
    lines = b"".join(
        b"\0" + bytes(place[row[i : i + 3]] for i in range(0, 3 * width, 3)) for row in rows
    )
    return (
        SIGNATURE
        + _chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 3, 0, 0, 0))
        + _chunk(b"PLTE", b"".join(colors))
        + _chunk(b"IDAT", zlib.compress(lines, 9))
        + _chunk(b"IEND", b"")
    )


def _colors(rows):
    return sorted({row[i : i + 3] for row in rows for i in range(0, len(row), 3)})


def _chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def _chunks(png):
    at = len(SIGNATURE)
    while at < len(png):
        (length,) = struct.unpack_from(">I", png, at)
        yield png[at + 4 : at + 8], png[at + 8 : at + 8 + length]
        at += 12 + length


def _pixels(png):
    """Width, height and the rows as bytes of red, green and blue."""
    header = data = b""
    for kind, content in _chunks(png):
        if kind == b"IHDR":
            header = content
        elif kind == b"IDAT":
            data += content
    width, height, depth, color_type, _, _, interlaced = struct.unpack(">IIBBBBB", header)
    if depth != 8 or interlaced or color_type not in CHANNELS:
        raise ValueError("not a plain picture in colours")
    step = CHANNELS[color_type]
    raw = zlib.decompress(data)
    rows = []
    above = bytearray(width * step)
    for y in range(height):
        start = y * (width * step + 1)
        line = bytearray(raw[start + 1 : start + 1 + width * step])
        _undo_filter(raw[start], line, above, step)
        rows.append(bytes(line[i] for i in range(len(line)) if i % step < 3))
        above = line
    return width, height, rows


def _undo_filter(kind, line, above, step):
    for i in range(len(line) if kind else 0):
        left = line[i - step] if i >= step else 0
        corner = above[i - step] if i >= step else 0
        guess = (0, left, above[i], (left + above[i]) // 2, _paeth(left, above[i], corner))[kind]
        line[i] = (line[i] + guess) & 255


def _paeth(left, above, corner):
    """The neighbour that is nearest to left + above - corner."""
    to_left, to_above = abs(above - corner), abs(left - corner)
    to_corner = abs(left + above - 2 * corner)
    if to_left <= to_above and to_left <= to_corner:
        return left
    return above if to_above <= to_corner else corner
