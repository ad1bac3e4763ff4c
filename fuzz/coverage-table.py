# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
"""Tables of lines and branches reached, from what llvm-cov exports and a list of readers. Tables go to
standard error, lines and branches of readers that nothing reaches to standard output.

What no input can reach is named in fuzz/not-counted, with the reason, and not counted."""

import collections
import json
import pathlib
import re
import subprocess
import sys


def load(path):
    return json.loads(pathlib.Path(path).read_text())["data"][0]


def wanted(path):
    """unit: names of functions, from lines such as `Route.cpp ReadRow ReadRow6`."""
    names = collections.defaultdict(set)
    for line in pathlib.Path(path).read_text().splitlines():
        if line and line[0] != "#":
            unit, *functions = line.split()
            names[unit].update(functions)
    return names


def plain_name(mangled):
    """Name of a function without scope and arguments; a lambda counts for the function that it is in."""
    text = subprocess.run(["c++filt", mangled], capture_output=True, text=True, check=True).stdout.strip()
    text = text.replace("(anonymous namespace)::", "").split("::{lambda")[0].split("::$_")[0]
    text = re.sub(r"<[^<>]*>", "", re.sub(r"<[^<>]*>", "", text))
    return re.sub(r"\(.*", "", text).split(" ")[-1].replace("vorlix::", "")


def lines_of(regions):
    """line: how often it ran, from the code regions of a function."""
    counts = {}
    for first, _, last, _, count, _, _, kind in sorted(regions, key=lambda r: (r[0], r[1], -r[2])):
        if kind == 0:
            for line in range(first, last + 1):
                counts[line] = count
    return counts


def not_counted(path):
    """unit: pieces of it, each a range of lines, from lines such as `Netlink.cpp :: 3 :: its first line :: reason`."""
    pieces = collections.defaultdict(list)
    for line in pathlib.Path(path).read_text().splitlines():
        if not line or line[0] == "#":
            continue
        unit, count, text, _ = line.split(" :: ", 3)
        source = pathlib.Path("Src", unit).read_text().splitlines()
        places = [number for number, there in enumerate(source, 1) if there.strip() == text]
        if len(places) != 1:
            sys.exit(f"{path}: {unit} has not one line {text}")
        pieces[unit].append(range(places[0], places[0] + int(count)))
    return pieces


def leave_out(lines, branches, pieces):
    """Takes what is not reached in the pieces out of the counts. Returns how many lines and ways of branches."""
    left = [0, 0]
    for unit, ranges in pieces.items():
        for piece in ranges:
            idle = [line for line in piece if lines[unit].get(line) == 0]
            turns = [place for place, ways in branches[unit].items() if place[0] in piece and 0 in ways]
            if not idle and not turns:
                sys.exit(f"fuzz/not-counted: {unit}:{piece.start} is reached")
            for line in idle:
                del lines[unit][line]
            for place in turns:
                branches[unit][place] = tuple(ways for ways in branches[unit][place] if ways)
                left[1] += 2 - len(branches[unit][place])
            left[0] += len(idle)
    return left


def main():
    data = load(sys.argv[1])
    readers = wanted(sys.argv[2])
    found = collections.defaultdict(set)
    lines = collections.defaultdict(dict)
    branches = collections.defaultdict(dict)
    for function in data["functions"]:
        path = function["filenames"][0]
        if "/Src/" not in path:
            continue
        unit = path.split("/Src/")[1]
        mangled = function["name"].split(":")[-1]
        name = plain_name(mangled)
        if name not in readers.get(unit, ()) and "*" not in readers.get(unit, ()):
            continue
        found[unit].add(name)
        here = {number for number, name in enumerate(function["filenames"]) if name == path}  # no macro's body
        for line, count in lines_of(r for r in function["regions"] if r[5] in here).items():
            lines[unit][line] = max(lines[unit].get(line, 0), count)
        for branch in (b for b in function["branches"] if b[6] in here):
            place = tuple(branch[:4])
            before = branches[unit].get(place, (0, 0))
            branches[unit][place] = (before[0] + branch[4], before[1] + branch[5])

    left = leave_out(lines, branches, not_counted(sys.argv[3]))

    def percent(part, whole):
        return f"{100 * part / whole:5.1f} %" if whole else "    - "

    print("| Unit | Lines | reached | Branches | reached |\n|---|---:|---:|---:|---:|", file=sys.stderr)
    sums = [0, 0, 0, 0]
    for unit in sorted(lines):
        ways = [way for both in branches[unit].values() for way in both]
        row = [len(lines[unit]), sum(1 for c in lines[unit].values() if c), len(ways), sum(1 for way in ways if way)]
        sums = [a + b for a, b in zip(sums, row)]
        print(f"| `{unit}` | {row[0]} | {percent(row[1], row[0])} | {row[2]} | {percent(row[3], row[2])} |",
              file=sys.stderr)
        for line in sorted(line for line, count in lines[unit].items() if not count):
            print(f"Src/{unit}:{line}: not reached")
        for place, ways in sorted(branches[unit].items()):
            if 0 in ways:
                true, false = ways
                print(f"Src/{unit}:{place[0]}:{place[1]}: never {'false' if true else 'true' if false else 'asked'}")
    print(f"| all | {sums[0]} | {percent(sums[1], sums[0])} | {sums[2]} | {percent(sums[3], sums[2])} |", file=sys.stderr)
    print(f"not counted: {left[0]} lines and {left[1]} branches of fuzz/not-counted",
          file=sys.stderr)
    for unit, names in readers.items():
        for name in sorted(names - found[unit] - {"*"}):
            print(f"no function {name} in {unit}", file=sys.stderr)


main()
