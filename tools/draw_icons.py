#!/usr/bin/env python3
"""Draws the dialogs' icon and the cursors.

Usage: draw_icons.py FOLDER     (writes radiashafts.ico, pipette.cur, open_hand.cur and
                                 closed_hand.cur)
"""

import math
import struct
import sys

OVERSAMPLING = 6


def rays(x, y):
    """The icon: a warm light low on the left that fans out over a night sky. Coordinates 0 to 1."""
    edge = min(x, y, 1 - x, 1 - y)
    corner = 0.16
    cx = min(max(x, corner), 1 - corner)
    cy = min(max(y, corner), 1 - corner)
    if edge < 0.02 or math.hypot(x - cx, y - cy) > corner - 0.02:
        return None
    sky = (0.07 + 0.05 * (1 - y), 0.10 + 0.08 * (1 - y), 0.24 + 0.16 * (1 - y))
    dx, dy = x - 0.27, y - 0.30
    distance = math.hypot(dx, dy)
    angle = math.atan2(dy, dx)
    beam = 0.5 + 0.5 * math.cos(angle * 9 + 0.6)
    beam = beam ** 1.5 * max(0.0, 1 - distance * 0.85)
    glow = math.exp(-(distance / 0.17) ** 2) * 1.5 + math.exp(-distance / 0.22) * 0.5
    light = beam * 0.95 + glow
    color = (1.0, 0.83, 0.48)
    return tuple(min(1.0, s + light * c * (1 - 0.35 * s)) for s, c in zip(sky, color)) + (1.0,)


def pipette(x, y):
    """The cursor: a dropper whose tip, the hot spot, is at the lower left. Coordinates 0 to 1."""
    # Along the tool: 0 at the tip, 1 at the bulb's end; across: distance from its axis.
    along = (x + (1 - y)) / 2
    across = abs(x - (1 - y)) / math.sqrt(2)

    def part(outset):
        if -0.02 - outset < along < 0.10 + outset:
            return across < 0.025 + outset + max(0.0, along) * 0.35, "glass"
        if 0.10 <= along < 0.52 + outset:
            return across < 0.062 + outset, "glass"
        if 0.52 <= along < 0.62 + outset:
            return across < 0.16 + outset, "collar"
        if 0.62 <= along < 0.92 + outset:
            bulb = 0.105 + 0.02 * math.sin((along - 0.62) / 0.30 * math.pi)
            end = max(0.0, along - 0.80)
            return math.hypot(across, end * 1.4) < bulb + outset, "bulb"
        return False, ""

    inside, name = part(0.0)
    if inside:
        shade = {"glass": 0.98, "collar": 0.15, "bulb": 0.15}[name]
        if name == "glass" and along < 0.30:
            return (1.0, 0.75, 0.25, 1.0)
        return (shade, shade, shade, 1.0)
    outside, _ = part(0.05)
    if outside:
        return (0.0, 0.0, 0.0, 1.0) if name != "bulb" else (1.0, 1.0, 1.0, 1.0)
    return None


def hand(fingers, thumb, palm_top):
    """A cursor: a hand in white with a black outline. Fingers are (x, top), the thumb is two points;
    coordinates 0 to 32."""
    left, right, bottom, corner = 8.0, 23.0, 26.0, 4.0

    def line(x, y, a, b):
        dx, dy = b[0] - a[0], b[1] - a[1]
        along = ((x - a[0]) * dx + (y - a[1]) * dy) / (dx * dx + dy * dy)
        along = min(max(along, 0.0), 1.0)
        return math.hypot(x - a[0] - along * dx, y - a[1] - along * dy)

    def palm(x, y):
        cx = min(max(x, left + corner), right - corner)
        cy = min(max(y, palm_top + corner), bottom - corner)
        return math.hypot(x - cx, y - cy) - corner

    def paint(unit_x, unit_y):
        x, y = unit_x * 32, unit_y * 32
        limbs = [line(x, y, (fx, top), (fx, 19)) - 1.5 for fx, top in fingers]
        limbs.append(line(x, y, *thumb) - 1.5)
        if min(limbs) < 0 or palm(x, y) < 0:
            return (1.0, 1.0, 1.0, 1.0)
        if min(limbs) < 1.0 or palm(x, y) < 1.0:
            return (0.0, 0.0, 0.0, 1.0)
        return None

    return paint


OPEN_HAND = hand([(9.5, 9.5), (13.5, 6.5), (17.5, 6.5), (21.5, 9.5)], ((4.5, 16.0), (10.0, 21.5)), 16.0)
CLOSED_HAND = hand([(9.5, 13.5), (13.5, 12.5), (17.5, 12.5), (21.5, 13.5)],
                   ((6.5, 17.5), (9.5, 20.5)), 16.0)


def raster(paint, size):
    """Rows from the top of (red, green, blue, alpha) bytes."""
    rows = []
    n = OVERSAMPLING
    for py in range(size):
        row = []
        for px in range(size):
            total = [0.0] * 4
            for sy in range(n):
                for sx in range(n):
                    color = paint((px + (sx + 0.5) / n) / size, (py + (sy + 0.5) / n) / size)
                    if color is None:
                        continue
                    for i in range(3):
                        total[i] += color[i]
                    total[3] += 1
            count = total[3]
            row.append(tuple(int(total[i] / count * 255 + 0.5) if count else 0 for i in range(3))
                       + (int(count / (n * n) * 255 + 0.5),))
        rows.append(row)
    return rows


def device_independent_bitmap(rows):
    size = len(rows)
    header = struct.pack("<IiiHHIIiiII", 40, size, size * 2, 1, 32, 0, 0, 0, 0, 0, 0)
    pixels = b"".join(struct.pack("4B", p[2], p[1], p[0], p[3]) for row in rows[::-1] for p in row)
    stride = (size + 31) // 32 * 4
    mask = b""
    for row in rows[::-1]:
        bits = bytearray(stride)
        for x, p in enumerate(row):
            if p[3] < 128:
                bits[x // 8] |= 0x80 >> x % 8
        mask += bytes(bits)
    return header + pixels + mask


def write(path, kind, images):
    """kind 1 is an icon, 2 a cursor; images are (size, fields at 4 and 6, bitmap)."""
    offset = 6 + 16 * len(images)
    directory, data = b"", b""
    for size, first, second, bitmap in images:
        directory += struct.pack("<BBBBHHII", size % 256, size % 256, 0, 0, first, second,
                                 len(bitmap), offset + len(data))
        data += bitmap
    with open(path, "wb") as file:
        file.write(struct.pack("<HHH", 0, kind, len(images)) + directory + data)


def main():
    folder = sys.argv[1]
    write(folder + "/radiashafts.ico", 1,
          [(s, 1, 32, device_independent_bitmap(raster(rays, s))) for s in (16, 20, 24, 32, 48)])
    write(folder + "/pipette.cur", 2,
          [(s, 0, s - 1, device_independent_bitmap(raster(pipette, s))) for s in (32,)])
    for name, paint in (("open_hand", OPEN_HAND), ("closed_hand", CLOSED_HAND)):
        write(f"{folder}/{name}.cur", 2, [(32, 16, 17, device_independent_bitmap(raster(paint, 32)))])


if __name__ == "__main__":
    main()
