#!/usr/bin/env python3
"""Draws a misty forest against a low sun, a picture of the gallery and the benchmarks.

Usage: draw_forest.py OUTPUT.ppm
"""

import math
import random
import sys

WIDTH, HEIGHT = 960, 600
SUN = (0.36, 0.27)


def mix(a, b, t):
    return tuple(x + (y - x) * t for x, y in zip(a, b))


def smooth(t):
    t = min(max(t, 0.0), 1.0)
    return t * t * (3 - 2 * t)


class Noise:
    """Value noise in octaves, 0 to 1."""

    def __init__(self, seed):
        self.random = random.Random(seed)
        self.values = {}

    def lattice(self, x, y):
        key = (x, y)
        if key not in self.values:
            self.values[key] = self.random.random()
        return self.values[key]

    def single(self, x, y):
        ix, iy = math.floor(x), math.floor(y)
        fx, fy = smooth(x - ix), smooth(y - iy)
        top = self.lattice(ix, iy) * (1 - fx) + self.lattice(ix + 1, iy) * fx
        bottom = self.lattice(ix, iy + 1) * (1 - fx) + self.lattice(ix + 1, iy + 1) * fx
        return top * (1 - fy) + bottom * fy

    def at(self, x, y, octaves=4):
        total, weight = 0.0, 0.0
        for octave in range(octaves):
            scale = 2.0 ** octave
            total += self.single(x * scale, y * scale) / scale
            weight += 1.0 / scale
        return total / weight


class Layer:
    """Trunks and leaves at one distance, 0 far to 1 near."""

    def __init__(self, nearness, seed):
        rng = random.Random(seed)
        self.nearness = nearness
        self.noise = Noise(seed)
        self.color = mix((0.60, 0.58, 0.50), (0.045, 0.06, 0.045), nearness ** 0.6)
        count = int(30 - 22 * nearness)
        self.trunks = []
        for i in range(count):
            x = (i + rng.uniform(0.1, 0.9)) / count
            if abs(x - SUN[0]) < 0.05 * (1 + nearness):
                continue
            width = (0.004 + 0.022 * nearness ** 1.6) * rng.uniform(0.6, 1.4)
            self.trunks.append((x, width, rng.uniform(-0.05, 0.05), rng.uniform(0, 10)))
        self.floor = 0.74 + 0.19 * nearness
        self.scale = 38 - 18 * nearness
        self.cover = 0.47 + 0.05 * nearness

    def covers(self, x, y):
        if y > self.floor + 0.03 * (self.noise.at(x * 9, 3.7) - 0.5):
            return 1.0
        for middle, width, lean, phase in self.trunks:
            bend = 0.006 * self.nearness * math.sin(y * 7 + phase)
            if abs(x - middle - lean * (y - 0.5) - bend) < width * (0.75 + 0.5 * y):
                return 1.0
        density = self.noise.at(x * self.scale, y * self.scale)
        clearing = math.hypot(x - SUN[0], (y - SUN[1]) * 0.8)
        reach = 0.32 - 0.24 * self.nearness
        threshold = self.cover + (0.42 + self.nearness) * max(0.0, y - reach) + 0.22 * math.exp(-(clearing * 6) ** 2)
        return smooth((density - threshold) * 30)


def main():
    layers = [Layer(n, seed) for n, seed in ((0.05, 11), (0.35, 23), (0.65, 37), (1.0, 51))]
    haze = Noise(5)
    grain = random.Random(1)
    rows = bytearray()
    for j in range(HEIGHT):
        y = j / HEIGHT
        for i in range(WIDTH):
            x = i / WIDTH
            distance = math.hypot(x - SUN[0], (y - SUN[1]) * HEIGHT / WIDTH)
            sky = mix((1.0, 0.93, 0.74), (0.62, 0.68, 0.66), smooth(distance * 1.7))
            glow = math.exp(-(distance * 9) ** 2)
            color = mix(sky, (1.0, 0.99, 0.93), glow)
            for layer in layers:
                cover = layer.covers(x, y)
                if cover <= 0.0:
                    continue
                mist = (1 - layer.nearness) * 0.55 * math.exp(-(distance * 2.2) ** 2)
                ground = 0.10 * layer.nearness * haze.at(x * 40, y * 60, 3) * (y > layer.floor)
                leaf = mix(layer.color, sky, mist)
                leaf = tuple(c + ground * g for c, g in zip(leaf, (0.7, 1.0, 0.4)))
                color = mix(color, leaf, cover)
            for c in color:
                rows.append(min(255, max(0, int(c * 255 + grain.uniform(-2.5, 2.5)))))
    with open(sys.argv[1], "wb") as file:
        file.write(b"P6 %d %d 255\n" % (WIDTH, HEIGHT))
        file.write(rows)


if __name__ == "__main__":
    main()
