#!/usr/bin/env python3
"""Turns the benchmarks' JSON into a table of ratios, the performance page and its plots.

usage: report.py GOALS.csv RESULT.json... [--page docs/performance.md --readme README.md
                                           --memory MEMORY.tsv]

What it writes into either page stands between two marker lines; the prose around them is kept.
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
    """Medians of the CPU time in nanoseconds, {row: {variant: time}}, and what was not measured."""
    times = collections.defaultdict(lambda: collections.defaultdict(list))
    absent = []
    for path in paths:
        for run in json.loads(pathlib.Path(path).read_text())["benchmarks"]:
            if run["run_type"] != "iteration":
                continue
            row, variant = run["run_name"].split("/repeats:")[0].split("@")
            if run.get("error_occurred"):
                absent.append(f"{row} ({variant}): {run['error_message']}")
                continue
            unit = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}[run["time_unit"]]
            times[row][variant].append(run["cpu_time"] * unit)
    medians = {row: {v: statistics.median(t) for v, t in variants.items()}
               for row, variants in times.items()}
    return medians, sorted(set(absent))


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


SIZES = {"": 1, "K": 1 << 10, "M": 1 << 20, "G": 1 << 30}

# One picture a family: its works, each in a field of its own, as rate over size.
PICTURES = {
    "digests": ["sha256", "hmac-sha256", "3des-encrypt", "base64-encode", "base64-decode",
                "base64url-decode"],
    "copies": ["memcpy_s", "memset_s", "strcpy_s", "strncpy_s"],
    "formatting": ["snprintf_s/literal", "snprintf_s/text", "swprintf_s/literal",
                   "sscanf_s-word"],
    "containers": ["array-append", "array-sort", "hash-table", "hash-load"],
    "json": ["json-members", "json-objects", "json-depth", "json-find"],
    "cipher": ["aes-record-encrypt", "aes-record-decrypt", "request-encrypt", "request-decrypt"],
}


def size_of(row):
    """The size at the end of a row's name, or None: sha256/1K is 1024."""
    match = re.fullmatch(r".*[/-](\d+)([KMG]?)", row)
    return int(match[1]) * SIZES[match[2]] if match else None


def lines_of(results, work):
    """{variant: [(size, rate)]} of one work."""
    lines = collections.defaultdict(list)
    for row, variants in results.items():
        size = size_of(row)
        if size and re.fullmatch(re.escape(work) + r"[/-]\d+[KMG]?", row):
            for variant, time in variants.items():
                lines[variant].append((size, size / time * 1e3))
    return {variant: sorted(points) for variant, points in sorted(lines.items())
            if len(points) > 1}


def field(work, lines, number):
    """The gnuplot commands for one work."""
    names = [f"$d{number}_{i}" for i in range(len(lines))]
    blocks = [f"{name} << EOD\n" + "\n".join(f"{x} {y:.4g}" for x, y in points) + "\nEOD"
              for name, points in zip(names, lines.values())]
    series = ", ".join(f"{name} with lines lw 2 title '{variant}'"
                       for name, variant in zip(names, lines))
    return "\n".join(blocks + [f"set title '{work}'", f"plot {series}"])


# Each applied until it finds nothing more.
BALLAST = [(r"<!--.*?-->|<defs>.*?</defs>|<title>.*?</title>|<desc>.*?</desc>", ""),
           (r" (id|class|stroke-linecap|stroke-linejoin|font-family|font-size)=\"[^\"]*\"", ""),
           (r' stroke="none" fill="black"', ""),
           (r"(\d\.\d)\d+", r"\1"),
           (r"\s*\n\s*", "\n"),
           (r"<g[^>]*>\s*</g>", ""),
           (r'<g color="\w+">\s*((?:<path[^>]*>\s*)*)</g>', r"\1"),
           (r'<g color="\w+">\s*(<g transform[^>]*>\s*<text>[^<]*</text>\s*</g>)\s*</g>', r"\1"),
           (r"\n+", "\n"), (r" +", " ")]
STYLE = "<style>text{font:11px sans-serif;fill:black;stroke:none}path{fill:none}</style>"


def without_ballast(svg):
    """gnuplot's SVG without comments, symbols and groups of which nothing is seen."""
    for pattern, kept in BALLAST:
        before = None
        while before != svg:
            before, svg = svg, re.sub(pattern, kept, svg, flags=re.S)
    return svg.replace("<rect ", STYLE + "\n<rect ", 1)


def plot(results, folder):
    """Draws the pictures and returns their paths; a run of few rows has none."""
    folder.mkdir(parents=True, exist_ok=True)
    drawn = []
    for name, works in PICTURES.items():
        fields = [(work, lines_of(results, work)) for work in works]
        fields = [(work, lines) for work, lines in fields if lines]
        if not fields:
            continue
        path = folder / f"{name}.svg"
        columns, rows = 2, (len(fields) + 1) // 2
        script = "\n".join(
            [f"set terminal svg size 900,{rows * 270} font 'sans,11' noenhanced background 'white'",
             f"set output '{path}'", f"set multiplot layout {rows},{columns}",
             "set logscale xy; set key outside right; set format '10^%T'",
             "set border 3; set tics nomirror; set mxtics 1; set mytics 1",
             "set ylabel 'MB/s, elements/us'"]
            + [field(work, lines, i) for i, (work, lines) in enumerate(fields)])
        subprocess.run(["gnuplot"], input=script, text=True, check=True)
        path.write_text(without_ballast(path.read_text()))
        drawn.append(path)
    return drawn


def processor():
    for line in open("/proc/cpuinfo"):
        if line.startswith("model name"):
            return line.split(":", 1)[1].strip()
    return "unknown"


def replace_between(path, marker, lines):
    """Puts `lines` between <!-- marker --> and <!-- /marker --> of a page."""
    path = pathlib.Path(path)
    first, last = f"<!-- {marker} -->", f"<!-- /{marker} -->"
    before, _, rest = path.read_text().partition(first)
    _, found, after = rest.partition(last)
    if not found:
        sys.exit(f"{path} lacks {first} or {last}")
    path.write_text("\n".join([before + first, ""] + lines + ["", last]) + after)


def ratio_table(rows):
    lines = ["| work | variant | ours, ns | peer, ns | ratio | goal | |",
             "|---|---|---:|---:|---:|---:|---|"]
    for row, variant, ours, peer, ratio, goal in rows:
        lines.append(f"| {row} | {variant} | {ours:.1f} | {peer:.1f} | {ratio:.3f} | "
                     f"{goal if goal is not None else ''} | {verdict(ratio, goal)} |")
    return lines


def peers_table(results):
    """The further peers, as ratios of our time to theirs."""
    lines = ["| work | variant | ours, ns | theirs, ns | ratio |", "|---|---|---:|---:|---:|"]
    for row, variants in sorted(results.items()):
        for variant, time in sorted(variants.items()):
            if variant.startswith("peer:") and "plx" in variants:
                lines.append(f"| {row} | {variant[5:]} | {variants['plx']:.1f} | {time:.1f} | "
                             f"{variants['plx'] / time:.3f} |")
    return lines


def memory_table(path):
    lines = ["| work | heap blocks | heap bytes | peak stack, bytes |", "|---|---:|---:|---:|"]
    with open(path, newline="") as file:
        lines += ["| " + " | ".join(row) + " |" for row in csv.reader(file, delimiter="\t")]
    return lines


def write_page(path, rows, results, absent, memory):
    with_goals = [r for r in rows if r[5] is not None]
    pictures = plot(results, pathlib.Path(path).parent / "performance")
    lines = [f"Processor: {processor()}", ""] + ratio_table(with_goals)
    if absent:
        lines += ["", "Not measured on this machine:", ""] + [f"- {name}" for name in absent]
    replace_between(path, "ratios", lines)
    replace_between(path, "growth", [f"![{picture.stem}: rate over size](performance/"
                                     f"{picture.name})\n" for picture in pictures])
    if memory:
        replace_between(path, "memory", memory_table(memory))
    replace_between(path, "peers", peers_table(results))


# The README's rows, and what they are called there.
SHORT = [("sha256/16K", "SHA-256, 16 KiB", "libcrypto"),
         ("3des-encrypt/1M", "triple DES, 1 MiB", "libcrypto"),
         ("base64-encode/16K", "Base64, encode 16 KiB", "`memcpy` of the text"),
         ("memcpy_s/random-1-64", "`memcpy_s`, 1 to 64 bytes", "`memcpy`"),
         ("snprintf_s/mixed", '`snprintf_s` "%5d %s %u %lld"', "`snprintf`"),
         ("sscanf_s/three-%d", '`sscanf_s` "%d %d %d"', "`sscanf`"),
         ("json-parse/configuration-19K", "JSON, 19 KiB", "cJSON"),
         ("array-sort/100000", "sort of 100,000", "`std::sort`"),
         ("request-encrypt/480", "request of 480 bytes, encrypt", "cJSON and EVP by hand")]


def write_readme(path, results):
    lines = ["| work | beside | our time / theirs |", "|---|---|---:|"]
    for row, name, peer in SHORT:
        if {"plx", "peer"} <= set(results.get(row, {})):
            lines.append(f"| {name} | {peer} | {results[row]['plx'] / results[row]['peer']:.2f} |")
    lines += ["", f"Measured by `scripts/bench` on one thread ({processor()}); "
                  "[all of it](docs/performance.md)."]
    replace_between(path, "speed", lines)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("goals")
    parser.add_argument("results", nargs="+")
    parser.add_argument("--page")
    parser.add_argument("--readme")
    parser.add_argument("--memory")
    args = parser.parse_args()
    goals = read_goals(args.goals)
    results, absent = read_results(args.results)
    rows = ratio_rows(results, goals)
    print_table(rows)
    if args.page:
        measured = {(r[0], r[1]) for r in rows}
        absent += [f"{row} ({variant}): no such row" for row, variant in goals
                   if (row, variant) not in measured
                   and not any(name.startswith(f"{row} ({variant})") for name in absent)]
        write_page(args.page, rows, results, absent, args.memory)
    if args.readme:
        write_readme(args.readme, results)
    for name in absent:
        print(f"not measured: {name}")
    missed = [r for r in rows if verdict(r[4], r[5]) == "MISSED"]
    print(f"{sum(r[5] is not None for r in rows) - len(missed)} goals met, {len(missed)} missed")


if __name__ == "__main__":
    sys.exit(main())
