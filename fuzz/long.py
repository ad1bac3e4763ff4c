#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
"""Searches for hours, on one core: a piece of work for the target that is furthest behind its number of
inputs (fuzz/goals), again and again until all have theirs or the time is over. It may be ended at any time
and goes on where it was. The programs are those of build/fuzz, taken again at each piece.

    fuzz/long.py FOLDER [--until HH:MM]   FOLDER keeps corpus, findings and the book; UTC, today
    fuzz/long.py FOLDER --count           what was run so far
"""

import argparse
import datetime
import os
import pathlib
import re
import shutil
import subprocess
import sys
import time

TREE = pathlib.Path(__file__).resolve().parent.parent
PIECES = 40  # of a target's goal
LONGEST = 300  # seconds of one piece


def goals():
    lines = (TREE / "fuzz/goals").read_text().splitlines()
    return {line.split()[0]: int(line.split()[1]) for line in lines if line and line[0] != "#"}


def totals(folder):
    """Inputs and CPU seconds of each target, from the book."""
    sums = {}
    book = folder / "book"
    for line in book.read_text().splitlines() if book.exists() else []:
        _, target, inputs, seconds = line.split()
        before = sums.get(target, (0, 0.0))
        sums[target] = (before[0] + int(inputs), before[1] + float(seconds))
    return sums


def count(folder):
    sums = totals(folder)
    rows = [(target, *sums.get(target, (0, 0.0)), goal) for target, goal in goals().items()]
    rows.append(("all", *(sum(row[i] for row in rows) for i in (1, 2, 3))))
    for target, inputs, seconds, goal in rows:
        rate = inputs / seconds if seconds else 0
        print(f"{target:20} {inputs:11} of {goal:10} {seconds:9.0f} s {rate:9.0f} a second")


def program(folder, target):
    """The newest program; a copy, which a build does not take away."""
    made = TREE / "build/fuzz/fuzz" / target
    kept = folder / "bin" / target
    if made.exists() and (not kept.exists() or made.stat().st_mtime > kept.stat().st_mtime):
        kept.parent.mkdir(exist_ok=True)
        shutil.copy2(made, kept.with_suffix(".new"))
        kept.with_suffix(".new").rename(kept)
    return kept


def run_piece(folder, target, inputs, seconds):
    """Returns whether nothing was found."""
    corpus = folder / "corpus" / target
    corpus.mkdir(parents=True, exist_ok=True)
    command = [str(program(folder, target)), f"-runs={inputs}", f"-max_total_time={seconds}", "-max_len=1024",
               "-timeout=30", "-detect_leaks=0", "-print_final_stats=1", f"-artifact_prefix={folder}/crash-{target}-"]
    dictionary = TREE / "fuzz/dictionaries" / f"{target}.dict"
    if dictionary.exists():
        command.append(f"-dict={dictionary}")
    command += [str(corpus), str(TREE / "fuzz/seeds" / target)]
    log = folder / f"log-{target}"
    with log.open("wb") as output:
        child = subprocess.Popen(command, stdout=output, stderr=output, stdin=subprocess.DEVNULL)
        _, status, usage = os.wait4(child.pid, 0)
    found = re.search(r"number_of_executed_units: *(\d+)", log.read_text(errors="replace"))
    executed = int(found.group(1)) if found else 0
    stamp = datetime.datetime.utcnow().strftime("%FT%TZ")
    with (folder / "book").open("a") as book:
        book.write(f"{stamp} {target} {executed} {usage.ru_utime + usage.ru_stime:.2f}\n")
    if status != 0:
        shutil.copy2(log, folder / f"broken-{target}-{int(time.time())}")
    return status == 0


def search(folder, end):
    broken = {}  # target: age of the program that found something
    while time.time() < end - 1:
        sums = totals(folder)
        open_targets = []
        for target, goal in goals().items():
            done = sums.get(target, (0, 0.0))[0]
            binary = program(folder, target)
            if done < goal and binary.exists() and broken.get(target) != binary.stat().st_mtime:
                open_targets.append((done / goal, target, goal))
        if not open_targets:
            return
        _, target, goal = min(open_targets)
        if not run_piece(folder, target, goal // PIECES, max(1, int(min(LONGEST, end - time.time())))):
            broken[target] = program(folder, target).stat().st_mtime


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--until", default="")
    parser.add_argument("--count", action="store_true")
    arguments = parser.parse_args()
    folder = arguments.folder.resolve()
    if arguments.count:
        count(folder)
        return 0
    folder.mkdir(parents=True, exist_ok=True)
    end = float("inf")
    if arguments.until:
        clock = datetime.datetime.strptime(arguments.until, "%H:%M").time()
        today = datetime.datetime.now(datetime.timezone.utc).date()
        end = datetime.datetime.combine(today, clock, datetime.timezone.utc).timestamp()
    search(folder, end)
    count(folder)
    return 1 if list(folder.glob("crash-*")) else 0


if __name__ == "__main__":
    sys.exit(main())
