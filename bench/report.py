#!/usr/bin/env python3
"""Turns the benchmarks' JSON into a table of ratios and the performance page.

usage: report.py GOALS.csv RESULT.json... [--page docs/performance.md]
"""
import argparse
import collections
import csv
import json
import pathlib
import re
import statistics
import subprocess
import sys


def read_results(paths):
    """Medians of the CPU time in nanoseconds: {row: {variant: time}}."""
    times = collections.defaultdict(lambda: collections.defaultdict(list))
    for path in paths:
        for run in json.loads(pathlib.Path(path).read_text())["benchmarks"]:
            if run["run_type"] != "iteration":
                continue
            row, variant = run["run_name"].split("@")
            unit = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}[run["time_unit"]]
            times[row][variant].append(run["cpu_time"] * unit)
    return {row: {v: statistics.median(t) for v, t in variants.items()}
            for row, variants in times.items()}


def read_goals(path):
    with open(path, newline="") as file:
        return {(g["row"], g["variant"]): float(g["goal"]) for g in csv.DictReader(file)}


def ratio_rows(results, goals):
    """(row, variant, ns, peer ns, ratio, goal or None), in the goals' order."""
    order = {key: i for i, key in enumerate(goals)}
    rows = []
    for row, variants in results.items():
        if "peer" not in variants:
            continue
        for variant, time in variants.items():
            if variant.startswith("plx"):
                rows.append((row, variant, time, variants["peer"], time / variants["peer"],
                             goals.get((row, variant))))
    rows.sort(key=lambda r: (order.get((r[0], r[1]), order.get((r[0], "plx"), 10**6)), r[0], r[1]))
    return rows


def verdict(ratio, goal):
    if goal is None:
        return ""
    return "met" if ratio <= goal else "MISSED"


def print_table(rows):
    print(f"{'work':32} {'variant':16} {'ours ns':>12} {'peer ns':>12} {'ratio':>7} {'goal':>6}")
    for row, variant, ours, peer, ratio, goal in rows:
        print(f"{row:32} {variant:16} {ours:12.1f} {peer:12.1f} {ratio:7.3f} "
              f"{goal if goal is not None else '':>6} {verdict(ratio, goal)}")


SIZES = {"K": 1024, "M": 1024 * 1024}


def size_of(row):
    """The size at the end of a row's name, or None: sha256/1K is 1024."""
    match = re.fullmatch(r".*/(\d+)([KM]?)", row)
    return int(match[1]) * SIZES.get(match[2], 1) if match else None


def plot_rates(results, folder):
    """One SVG a work that was measured at three sizes or more: rate over size."""
    works = collections.defaultdict(lambda: collections.defaultdict(list))
    for row, variants in results.items():
        size = size_of(row)
        if size:
            for variant, time in variants.items():
                works[row.rsplit("/", 1)[0]][variant].append((size, size / time * 1e3))
    folder.mkdir(parents=True, exist_ok=True)
    pictures = []
    for work, lines in sorted(works.items()):
        if max(len(points) for points in lines.values()) < 3:
            continue
        picture = folder / f"{work}.svg"
        blocks = [f"$d{i} << EOD\n" + "\n".join(f"{x} {y}" for x, y in sorted(points)) + "\nEOD"
                  for i, points in enumerate(lines.values())]
        series = ", ".join(f"$d{i} with linespoints title '{v}' noenhanced"
                           for i, v in enumerate(lines))
        script = "\n".join(blocks + [
            f"set terminal svg size 720,400; set output '{picture}'",
            f"set logscale xy; set title '{work}' noenhanced; set key outside",
            "set xlabel 'bytes or elements a call'; set ylabel 'MB/s (or elements/us)'; set grid",
            f"plot {series}"])
        subprocess.run(["gnuplot"], input=script, text=True, check=True)
        pictures.append(picture)
    return pictures


def processor():
    for line in open("/proc/cpuinfo"):
        if line.startswith("model name"):
            return line.split(":", 1)[1].strip()
    return "unknown"


def write_page(path, rows, results, absent):
    path = pathlib.Path(path)
    pictures = plot_rates(results, path.parent / "performance")
    lines = ["# Performance", "",
             "Made by `scripts/bench`; only ratios travel between machines: our time divided by "
             "the peer's, medians of interleaved rounds in one run, below 1 is faster.", "",
             f"Processor: {processor()}", "",
             "| work | variant | ours, ns | peer, ns | ratio | goal | |",
             "|---|---|---:|---:|---:|---:|---|"]
    for row, variant, ours, peer, ratio, goal in rows:
        lines.append(f"| {row} | {variant} | {ours:.1f} | {peer:.1f} | {ratio:.3f} | "
                     f"{goal if goal is not None else ''} | {verdict(ratio, goal)} |")
    if absent:
        lines += ["", "Not measured on this machine: " + ", ".join(absent) + "."]
    for picture in pictures:
        lines += ["", f"![{picture.stem}: rate over size](performance/{picture.name})"]
    path.write_text("\n".join(lines) + "\n")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("goals")
    parser.add_argument("results", nargs="+")
    parser.add_argument("--page")
    args = parser.parse_args()
    goals = read_goals(args.goals)
    results = read_results(args.results)
    rows = ratio_rows(results, goals)
    print_table(rows)
    measured = {(r[0], r[1]) for r in rows}
    absent = [f"{row} ({variant})" for row, variant in goals if (row, variant) not in measured]
    if args.page:
        write_page(args.page, rows, results, absent)
        for name in absent:
            print(f"not measured: {name}")
    missed = [r for r in rows if verdict(r[4], r[5]) == "MISSED"]
    print(f"{sum(r[5] is not None for r in rows) - len(missed)} goals met, {len(missed)} missed")


if __name__ == "__main__":
    sys.exit(main())
