#!/usr/bin/python3
"""Draws the table that hvk3_soak prints: scripts/soak_plot.py TABLE PICTURE."""

import csv
import sys

import matplotlib

matplotlib.use("svg")
from matplotlib import pyplot  # noqa: E402, the backend comes first

MEBIBYTE = 1 << 20
CURVES = [("resident", MEBIBYTE, "resident, MiB"), ("heap", MEBIBYTE, "allocated, MiB"),
          ("blocks", 1, "blocks"), ("descriptors", 1, "descriptors"),
          ("threads", 1, "threads")]

with open(sys.argv[1], newline="") as table:
    rows = [{name: int(value) for name, value in row.items()} for row in csv.DictReader(table)]
figure, axes = pyplot.subplots(len(CURVES), 1, sharex=True, figsize=(9, 8))
for axis, (name, unit, label) in zip(axes, CURVES):
    values = [row[name] / unit for row in rows]
    axis.plot([row["frames"] / 1000 for row in rows], values)
    axis.set_ylabel(label)
    axis.set_ylim(0, 1.3 * max(values))
    axis.grid(alpha=0.3)
axes[-1].set_xlabel("thousand frames")
figure.tight_layout()
figure.savefig(sys.argv[2])
last = rows[-1]
print(f"{last['frames']} frames: {last['resident'] / MEBIBYTE:.1f} MiB resident, "
      f"{last['heap'] / MEBIBYTE:.2f} MiB allocated, {last['descriptors']} descriptors, "
      f"{last['threads']} threads")
