#!/usr/bin/python3
"""Turns the measurements of the whole frame into a table, one JSON file and a plot.

frame_table.py FOLDER reads FOLDER/runs/*.json, prints the table and writes FOLDER/frame.json and
FOLDER/frame.svg. A bar is met with 10 % slack, since the machine has other work too.
"""

import json
import pathlib
import sys

SLACK = 1.10
PLAIN = "growth, frame, plain"
LIVE = "growth, frame, live"


def read_runs(folder):
    rows = []
    for path in sorted(folder.glob("*.json"), key=lambda path: path.stat().st_mtime_ns):
        rows += json.loads(path.read_text())
    return rows


def verdict(row):
    if "bar" not in row:
        return ""
    if row["value"] <= row["bar"]:
        return "met"
    return "slack" if row["value"] <= row["bar"] * SLACK else "MISSED"


def print_table(rows):
    print("| of | frame | what | measured | bar | |")
    print("|---|---|---|--:|--:|---|")
    for row in rows:
        bar = f"{row['bar']:.2f}" if "bar" in row else ""
        print(f"| {row['subject']} | {row['size']} | {row['what']} "
              f"| {row['value']:.2f} {row['unit']} | {bar} | {verdict(row)} |")


def series(rows, subject, what):
    """Megapixels and microseconds of one line of the plot."""
    points = []
    for row in rows:
        if (row["subject"], row["what"]) == (subject, what):
            width, height = (int(side) for side in row["size"].split("x"))
            points.append((width * height / 1e6, row["value"]))
    points.sort()
    return [pixels for pixels, _ in points], [time for _, time in points]


def plot(rows, path):
    import matplotlib
    matplotlib.use("svg")
    from matplotlib import pyplot
    figure, (whole, added) = pyplot.subplots(1, 2, figsize=(11, 4.5))
    pixels, limit = series(rows, LIVE, "bare loop (a)")
    whole.plot(pixels, limit, "k--", label="bare loop (a)")
    for subject, mode in ((LIVE, "live"), (PLAIN, "plain")):
        for what, mark in (("plug-in", "o-"), ("OpenCV loop (b)", "x:")):
            pixels, times = series(rows, subject, what)
            _, bare = series(rows, subject, "bare loop (a)")
            whole.plot(pixels, times, mark, label=f"{what}, {mode}")
            added.plot(pixels, [a - b for a, b in zip(times, bare)], mark, label=f"{what}, {mode}")
    whole.set_title("a frame")
    added.set_title("what is added to the bare loop")
    for axes in (whole, added):
        axes.set_xlabel("megapixels")
        axes.set_ylabel("microseconds of processor time")
        axes.set_ylim(bottom=0)
        axes.legend()
    figure.tight_layout()
    figure.savefig(path)


def main():
    folder = pathlib.Path(sys.argv[1])
    rows = read_runs(folder / "runs")
    print_table(rows)
    (folder / "frame.json").write_text(json.dumps(rows, indent=1) + "\n")
    plot(rows, folder / "frame.svg")


if __name__ == "__main__":
    main()
