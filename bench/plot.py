#!/usr/bin/env python3
"""Draws what kelp_bench has written: ratios by content, or time against size.

    bench/plot.py RESULT.json PLOT.svg
"""

import json
import math
import statistics
import sys
from html import escape

COLORS = {
    "Kelp": "#c2410c",
    "RapidJSON": "#1d4ed8",
    "simdjson": "#0f766e",
    "simdjson*": "#5eaaa3",
    "nlohmann": "#7e22ce",
    "pugixml": "#64748b",
}
CONTENTS = ["mesh", "objects", "expressions", "hex"]


class Drawing:
    """An SVG picture, written element by element."""

    def __init__(self, width, height, title):
        self.elements = []
        self.width, self.height = width, height
        self.text(20, 30, title, size=17, weight="600")

    def text(self, x, y, text, size=12, anchor="start", color="#1f2937", weight="400"):
        self.elements.append(
            f'<text x="{x:.1f}" y="{y:.1f}" font-size="{size}" text-anchor="{anchor}" '
            f'fill="{color}" font-weight="{weight}">{escape(text)}</text>')

    def line(self, x1, y1, x2, y2, color="#e5e7eb", width=1.0):
        self.elements.append(f'<line x1="{x1:.1f}" y1="{y1:.1f}" x2="{x2:.1f}" y2="{y2:.1f}" '
                             f'stroke="{color}" stroke-width="{width}"/>')

    def bar(self, x1, x2, y, height, color, opacity=1.0):
        self.elements.append(
            f'<rect x="{min(x1, x2):.1f}" y="{y:.1f}" width="{abs(x2 - x1):.1f}" '
            f'height="{height}" fill="{color}" fill-opacity="{opacity}"/>')

    def polyline(self, points, color, dashes="none"):
        path = " ".join(f"{x:.1f},{y:.1f}" for x, y in points)
        self.elements.append(
            f'<polyline points="{path}" fill="none" stroke="{color}" stroke-width="1.8" '
            f'stroke-dasharray="{dashes}"/>')
        for x, y in points:
            self.elements.append(f'<circle cx="{x:.1f}" cy="{y:.1f}" r="2.6" fill="{color}"/>')

    def save(self, path):
        with open(path, "w", encoding="utf-8") as file:
            file.write(
                f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {self.width} {self.height}" '
                f'width="{self.width}" height="{self.height}" '
                f'font-family="system-ui, sans-serif">\n'
                f'<rect width="100%" height="100%" fill="#ffffff"/>\n' +
                "\n".join(self.elements) + "\n</svg>\n")


class LogScale:
    """Places values between two powers of ten on a stretch of the picture."""

    def __init__(self, low, high, start, end):
        self.low, self.high = math.floor(math.log10(low)), math.ceil(math.log10(high))
        self.start, self.end = start, end

    def at(self, value):
        share = (math.log10(value) - self.low) / (self.high - self.low)
        return self.start + share * (self.end - self.start)

    def powers(self):
        return [10.0**i for i in range(self.low, self.high + 1)]


def rounds_by_benchmark(result):
    """{(content, megabytes): [round, ...]}, in the order of the file."""
    rounds = {}
    for run in result["benchmarks"]:
        if run["run_type"] == "iteration":
            key = (run["name"].split("/")[0], run["sceneBytes"] / 1e6)
            rounds.setdefault(key, []).append(run)
    return rounds


def readers_of(rounds):
    return [name for name in COLORS if all(f"{name}.first" in r for r in rounds)]


def ratio(rounds, reader, figure):
    """Lower quartile, median and upper quartile of Kelp's time to the reader's."""
    ratios = sorted(r[f"Kelp.{figure}"] / r[f"{reader}.{figure}"] for r in rounds)
    if len(ratios) < 2:
        return ratios * 3
    return statistics.quantiles(ratios, n=4, method="inclusive")


def subtitle(result):
    context = result["context"]
    return ", ".join(str(context[key]) for key in ("processor", "compiler", "commit", "date")
                     if key in context)


def draw_ratio(drawing, scale, y, quartiles, color, opacity):
    low, median, high = quartiles
    drawing.bar(scale.at(1), scale.at(median), y, 9, color, opacity)
    drawing.line(scale.at(low), y + 4.5, scale.at(high), y + 4.5, "#111827", 1.2)
    for end in (low, high):
        drawing.line(scale.at(end), y + 2, scale.at(end), y + 7, "#111827", 1.2)


def draw_ratios(result, benchmarks, path):
    rows = [(content, reader, rounds)
            for (content, _), rounds in benchmarks.items()
            for reader in readers_of(rounds) if reader != "Kelp"]
    all_ratios = [value for _, reader, rounds in rows for figure in ("first", "again")
                  for value in ratio(rounds, reader, figure)]
    row_height, top, left, right = 30, 112, 210, 700
    height = top + row_height * len(rows) + 24 * len(benchmarks) + 50
    drawing = Drawing(860, height, "Kelp's time to that of other readers, same content, whole tree")
    drawing.text(20, 50, subtitle(result), size=11, color="#6b7280")
    drawing.text(20, 68, "Left of 1 Kelp takes less time. Dark: first parse of a process, light: "
                 "again in the same one. Lines: quartiles. simdjson*: parser used again.",
                 size=11, color="#6b7280")
    scale = LogScale(min(all_ratios + [0.1]), max(all_ratios + [10]), left, right)
    for power in scale.powers():
        drawing.line(scale.at(power), top - 8, scale.at(power), height - 36,
                     "#111827" if power == 1 else "#e5e7eb")
        drawing.text(scale.at(power), height - 18, f"{power:g}", anchor="middle")
    drawing.text(right + 75, top - 12, "first", size=11, anchor="end", color="#6b7280")
    drawing.text(right + 135, top - 12, "again", size=11, anchor="end", color="#6b7280")
    y, last = top, None
    for content, reader, rounds in rows:
        if content != last:
            y += 24 if last else 0
            drawing.text(20, y + 16, content, size=14, weight="600")
            last = content
        first, again = (ratio(rounds, reader, figure) for figure in ("first", "again"))
        drawing.text(left - 12, y + 16, reader, anchor="end")
        draw_ratio(drawing, scale, y + 2, first, COLORS[reader], 1.0)
        draw_ratio(drawing, scale, y + 12, again, COLORS[reader], 0.45)
        drawing.text(right + 75, y + 16, f"{first[1]:.2f}", anchor="end", weight="600")
        drawing.text(right + 135, y + 16, f"{again[1]:.2f}", anchor="end")
        y += row_height
    drawing.save(path)


def slope(points):
    """Exponent of size in time: the least squares line through the logarithms."""
    return statistics.linear_regression([math.log(x) for x, _ in points],
                                        [math.log(y) for _, y in points]).slope


def curves_of(benchmarks, content, figure):
    """{reader: [(megabytes, seconds), ...]} with the megabytes of scene text."""
    curves = {}
    for (name, megabytes), rounds in benchmarks.items():
        if name != content:
            continue
        for reader in readers_of(rounds):
            seconds = statistics.median(r[f"{reader}.{figure}"] for r in rounds)
            curves.setdefault(reader, []).append((megabytes, seconds))
    return curves


def draw_axes(drawing, x_scale, y_scale):
    for power in x_scale.powers():
        drawing.line(x_scale.at(power), y_scale.start, x_scale.at(power), y_scale.end)
        drawing.text(x_scale.at(power), y_scale.start + 16, f"{power:g}", size=11, anchor="middle")
    for power in y_scale.powers():
        drawing.line(x_scale.start, y_scale.at(power), x_scale.end, y_scale.at(power))
        drawing.text(x_scale.start - 6, y_scale.at(power) + 4, f"{power:g}", size=11, anchor="end")


def draw_sizes(result, benchmarks, path):
    contents = [c for c in CONTENTS if any(name == c for name, _ in benchmarks)]
    width, height = 520, 370
    rows = (len(contents) + 1) // 2
    drawing = Drawing(2 * width + 20, 80 + rows * height, "Seconds against MB of scene text")
    drawing.text(20, 50, subtitle(result), size=11, color="#6b7280")
    drawing.text(20, 68, "Whole tree, processor time. Solid: first parse of a process, in fresh "
                 "memory; dashed: again in the same one. Behind a name the exponents of the size, "
                 "first and again: 1 is a straight line.", size=11, color="#6b7280")
    for i, content in enumerate(contents):
        x, y = 60 + i % 2 * width, 110 + i // 2 * height
        first, again = (curves_of(benchmarks, content, figure) for figure in ("first", "again"))
        points = [point for curves in (first, again) for curve in curves.values()
                  for point in curve]
        x_scale = LogScale(1, max(p[0] for p in points) / 1.1, x, x + 310)
        y_scale = LogScale(min(p[1] for p in points), max(p[1] for p in points), y + 280, y + 10)
        drawing.text(x, y, content, size=14, weight="600")
        draw_axes(drawing, x_scale, y_scale)
        for line, reader in enumerate(first):
            label = reader
            for curve, dashes in ((first[reader], "none"), (again[reader], "5 4")):
                drawing.polyline([(x_scale.at(a), y_scale.at(b)) for a, b in curve],
                                 COLORS[reader], dashes)
                label += f" {slope(curve):.2f}" if len(curve) > 1 else ""
            drawing.text(x + 325, y + 30 + 20 * line, label, color=COLORS[reader], weight="600")
            print(f"{content}: {label}, ns a byte of scene text, first/again:",
                  ", ".join(f"{megabytes:.0f} MB {seconds / megabytes * 1e3:.2f}/"
                            f"{repeated / megabytes * 1e3:.2f}"
                            for (megabytes, seconds), (_, repeated)
                            in zip(first[reader], again[reader])))
    drawing.save(path)


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    with open(sys.argv[1], encoding="utf-8") as file:
        result = json.load(file)
    benchmarks = rounds_by_benchmark(result)
    is_of_sizes = len(benchmarks) > len({content for content, _ in benchmarks})
    (draw_sizes if is_of_sizes else draw_ratios)(result, benchmarks, sys.argv[2])


main()
