#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT

"""Counts what boots and changes of an address cost the flash that the settings lie on.

usage: tests/board/flashcost.py [--cards N,N...] [--times N] [--still PERCENT] ARCH BUILD_FOLDER [nor] [nand]
       tests/board/flashcost.py --check ARCH BUILD_FOLDER

On a virtual board with N cards the settings lie in jffs2 on a NOR flash, or in UBIFS on a NAND flash, as
after years of use: a part of the room holds what never changes, and the rest has been written over. The
kernel counts the bytes that programs save, the bytes that reach the flash, the places that are erased, and
the syncs. The machine is not started anew for each boot: `lanrise` is run again and again, ten seconds apart,
which cost nothing, since time runs by instructions. The NOR flash outlives the machine, so there a few boots
of a machine that was started anew tell whether that is the same.

Prints the cost of 1000 boots and of 1000 changes of an address, and how long the flash lives. With --check it
looks whether a few boots on the NOR flash cost what is known; exit status 0 when they do.
"""

import argparse
import collections
import datetime
import glob
import os
import re
import shutil
import subprocess
import sys
import tempfile
import threading

import run

NOR_SECTOR = 64 * 1024
NOR_FILE = 16 * NOR_SECTOR  # 15 sectors, and what the battery keeps
MEASURE_SECONDS = 4 * 3600  # of one board; then it hangs
CHECK_SECONDS = 7000  # a few seconds on a quiet machine
FIRST_LOOKS = 3  # boots that are looked at one by one, before many are counted together
COLD_BOOTS = 5
MOUNTS = 20

SUM = re.compile(r"\{ \w+: +(\d+) \} hitcount: +(\d+)(?: +\w+: +(\d+))?$")
COUNTING = ("amd64", "arm64")  # where a probe can name the arguments of a function
NAND_DRIVERS = ("zstd", "nandsim", "ubi", "ubifs")


Medium = collections.namedtuple("Medium", "name title endurances")
MEDIA = {
    "nor": Medium("nor", "jffs2, NOR", {"NOR": 100_000}),
    "nand": Medium("nand", "UBIFS, NAND", {"SLC": 100_000, "SLC, cheaper": 60_000, "MLC": 3_000}),
}

# With --check: what one boot, and one change, of a board with four cards cost a flash with room. A boot that
# saves more, or more often, wears out each device; one that saves less forgets something.
CHECK_CARDS = 4
CHECK_TIMES = 5
BOOT_LIMITS = {"syncs": (41, 41), "saved": (5_600, 6_800), "written": (9_500, 14_500)}
CHANGE_LIMITS = {"syncs": (3, 3), "saved": (450, 560), "written": (650, 1_100)}


# ---- a board with such a flash

def drivers_image(board, folder):
    """An archive with the drivers of the NAND flash, which other guests do without."""
    root = os.path.join(folder, "drivers")
    place = os.path.join(root, "flash")
    os.makedirs(place)
    with open(os.path.join(board, "version"), encoding="utf-8") as version:
        modules = os.path.join(board, "modules/lib/modules", version.read().strip())
    needs = {}
    with open(os.path.join(modules, "modules.dep"), encoding="utf-8") as lines:
        for line in lines:
            module, needed = line.split(":")
            needs[os.path.basename(module).split(".")[0]] = [module, *needed.split()]
    files = [file for driver in NAND_DRIVERS for file in reversed(needs[driver])]
    files = list(dict.fromkeys(files))
    for file in files:
        shutil.copy(os.path.join(modules, file), place)
    with open(os.path.join(place, "order"), "w", encoding="utf-8") as order:
        order.writelines(os.path.basename(file) + "\n" for file in files)
    shutil.copy(glob.glob(os.path.join(board, "*/usr/sbin/ubimkvol"))[0], place)
    names = subprocess.run(["find", "."], cwd=root, capture_output=True, check=True).stdout
    return subprocess.run(["cpio", "-o", "-H", "newc", "-R", "0:0", "--quiet"], cwd=root, input=names,
                          capture_output=True, check=True).stdout


class Counts(collections.namedtuple("Counts", "saved written syncs erased")):
    """Bytes handed to files, bytes that reached the flash, syncs, and how often each place was erased."""

    def __sub__(self, other):
        return Counts(self.saved - other.saved, self.written - other.written, self.syncs - other.syncs,
                      self.erased - other.erased)

    def erasures(self):
        return sum(self.erased.values())


def read_counts(lines):
    """What `counted` of the guest tells."""
    sums = collections.Counter()
    erased = collections.Counter()
    event = None
    for line in lines:
        if line.startswith("EVENT"):
            event = line.split()[1]
            continue
        key, hits, total = SUM.match(line).groups()
        if event == "erased":
            erased[int(key)] = int(hits)
        else:
            sums[event] += int(total or hits)
    syncs = sum(sums[event] for event in sums if event.startswith("sys_enter"))
    return Counts(sums["filed"], sums["written"], syncs, erased)


class Board(run.Guest):
    """A running machine with such a flash."""

    def __init__(self, bench, cards, medium):
        self.folder = tempfile.mkdtemp(dir=bench.folder)
        command = run.command_line(bench.arch, bench.parts, bench.image, cards,
                                   os.path.join(self.folder, "control"))
        command += ["-device", "ivshmem-plain,memdev=flash,master=on", "-object",
                    f"memory-backend-file,id=flash,size={NOR_FILE},mem-path={bench.flash},share=on"]
        self.machine = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                        stderr=subprocess.DEVNULL, text=True, errors="replace", bufsize=1)
        self.limit = threading.Timer(bench.seconds, self.machine.kill)
        self.limit.start()
        try:
            self.read_until("READY")
            self.tell(f"cards {cards}")
            self.tell(medium.name)
        except run.Failed:
            self.end()
            raise

    def counted(self):
        return read_counts(self.tell("counted"))

    def cost(self, order):
        before = self.counted()
        self.tell(order)
        return self.counted() - before

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.end()

    def end(self):
        """Pulls the plug."""
        self.limit.cancel()
        self.machine.kill()
        self.machine.wait()
        self.machine.stdin.close()
        self.machine.stdout.close()
        shutil.rmtree(self.folder)


class Bench:
    """What all boards of a run have in common."""

    def __init__(self, arch, build, folder, media, seconds):
        self.arch = arch
        self.seconds = seconds
        self.folder = folder
        self.parts = run.board_of(arch)
        self.flash = os.path.join(folder, "nor")
        self.image = run.make_image(self.parts, build, os.path.join(run.HERE, "flashcost.sh"), folder)
        if "nand" in media:
            with open(self.image, "ab") as image:
                image.write(drivers_image(self.parts, folder))

    def blank(self):
        with open(self.flash, "wb") as flash:
            flash.write(b"\xff" * NOR_FILE)


# ---- what is counted

class Costs:
    """All that was counted of one flash with one number of cards."""

    def __init__(self, medium, cards, times):
        self.medium = medium
        self.cards = cards
        self.times = times
        self.first = self.boots = self.changes = self.mounts = None
        self.warm = []  # boots, one by one
        self.cold = []  # the same, each of a machine that was started anew

    def prepare(self, board):
        """A new device: its first boot, and an address for each card."""
        board.tell("mkdir $Config && rest")
        self.first = board.cost("boots 1")
        board.tell(f"addresses {self.cards}; boots 2")

    def repeat(self, board):
        before = board.tell("settings_hash")
        self.boots = board.cost(f"boots {self.times}")
        if board.tell("settings_hash") != before:
            raise run.Failed("a boot changes the settings")
        self.changes = board.cost(f"changes {self.times}")

    def count(self, bench, still):
        bench.blank()
        with Board(bench, self.cards, self.medium) as board:
            self.prepare(board)
            board.tell(f"age {still}")
            self.warm = [board.cost("boots 1") for _ in range(FIRST_LOOKS)]
            self.repeat(board)
            self.mounts = board.cost(f"mounts {MOUNTS}")
        for _ in range(COLD_BOOTS if self.medium.name == "nor" else 0):
            with Board(bench, self.cards, self.medium) as board:
                self.cold.append(board.cost("boots 1"))
        return self


# ---- what is told

def grouped(number):
    return f"{round(number):,}".replace(",", " ")


def tell_cells(*cells):
    print("| " + " | ".join(str(cell) for cell in cells) + " |", flush=True)


def tell_row(costs, name, counts, times):
    cells = [grouped(count * 1000 / times)
             for count in (counts.syncs, counts.saved, counts.written, counts.erasures())]
    tell_cells(costs.medium.title, costs.cards, name, *cells)


def spread(counts, name):
    values = sorted(getattr(count, name) for count in counts)
    return f"{grouped(values[0])} to {grouped(values[-1])} {name}" if values else "none"


def tell_costs(costs):
    tell_row(costs, "boots", costs.boots, costs.times)
    tell_row(costs, "changes of an address", costs.changes, costs.times)
    tell_row(costs, "mounts", costs.mounts, MOUNTS)
    notes = [f"counted over {costs.times}; the first boot of all: {costs.first.syncs} syncs, "
             f"{grouped(costs.first.saved)} saved, {grouped(costs.first.written)} written"]
    for name, counts in (("warm", costs.warm), ("cold", costs.cold)):
        notes.append(f"{len(counts)} {name} boots: " +
                     ", ".join(spread(counts, what) for what in ("syncs", "saved", "written")))
    worn = sorted(costs.boots.erased.values(), reverse=True)
    notes.append(f"blocks by their erasures in these boots: {worn}")
    for note in notes:
        print(f"{costs.medium.title}, cards {costs.cards}: {note}", file=sys.stderr, flush=True)


def tell_life(costs):
    """A boot mounts, too. What nothing was erased of holds what lies still; it is not counted on."""
    blocks = len([times for times in costs.boots.erased.values() if times])
    erasures = costs.boots.erasures() / costs.times + costs.mounts.erasures() / MOUNTS
    for kind, endurance in costs.medium.endurances.items():
        boots = endurance * blocks / erasures if erasures else 0
        tell_cells(costs.medium.title, costs.cards, blocks, f"{kind}, {grouped(endurance)}", grouped(boots),
                   grouped(boots / 365), f"{boots / (10 * 365 * 24):.1f}")


def measure(bench, arguments, media):
    with open(os.path.join(bench.parts, "version"), encoding="utf-8") as version:
        print(f"{datetime.date.today()}, Linux {version.read().strip()}, {arguments.times} times, "
              f"{arguments.still} % of the room holds what never changes\n")
    all_costs = []
    tell_cells("Flash", "Cards", "1000", "Syncs", "Bytes saved", "Bytes written", "Erasures")
    print("|---|---:|---|---:|---:|---:|---:|", flush=True)
    for name in media:
        for cards in arguments.cards.split(","):
            costs = Costs(MEDIA[name], int(cards), arguments.times).count(bench, arguments.still)
            tell_costs(costs)
            all_costs.append(costs)
    print()
    tell_cells("Flash", "Cards", "Blocks in turn", "Endurance, erasures of a block", "Boots",
               "Years at one a day", "Boots an hour for ten years")
    print("|---|---:|---:|---|---:|---:|---:|")
    for costs in all_costs:
        tell_life(costs)
    return True


# ---- a look at a few

def is_within(name, counts, limits):
    """One check a limit; what is counted is told in any case."""
    good = True
    for what, (least, most) in limits.items():
        each = getattr(counts, what) / CHECK_TIMES
        within = least <= each <= most
        good = good and within
        print(f"{'ok' if within else 'not ok'} - {name}: {what} {each:.0f}, known are {least} to {most}")
    return good


def check(bench):
    bench.blank()
    costs = Costs(MEDIA["nor"], CHECK_CARDS, CHECK_TIMES)
    with Board(bench, CHECK_CARDS, costs.medium) as board:
        costs.prepare(board)
        formatted = board.counted().erasures()
        costs.repeat(board)
    sectors = (NOR_FILE - 1) // NOR_SECTOR  # the last one is not whole
    print(f"{'ok' if formatted == sectors else 'not ok'} - each of {sectors} sectors of a new flash was "
          f"erased once: {formatted}")
    results = [formatted == sectors, is_within("a boot", costs.boots, BOOT_LIMITS),
               is_within("a change of an address", costs.changes, CHANGE_LIMITS)]
    return all(results)


def command():
    parser = argparse.ArgumentParser(description="Counts what boots cost the flash.")
    parser.add_argument("arch", choices=run.MACHINES)
    parser.add_argument("build", help="folder of a build as shipped")
    parser.add_argument("media", nargs="*", help="of: " + ", ".join(MEDIA))
    parser.add_argument("--cards", default="1,4,8", help="numbers of cards (1,4,8)")
    parser.add_argument("--times", type=int, default=1000, help="boots, and changes (1000)")
    parser.add_argument("--still", type=int, default=50, help="per cent of the room that never changes (50)")
    parser.add_argument("--check", action="store_true", help="look whether a few boots cost what is known")
    return parser.parse_intermixed_args()


def main():
    arguments = command()
    if arguments.arch not in COUNTING:
        print(f"skipped: the kernel of {arguments.arch} does not tell the arguments of its functions")
        sys.exit(run.SKIPPED)
    media = arguments.media or list(MEDIA)
    try:
        with tempfile.TemporaryDirectory(prefix="flashcost-") as folder:
            if arguments.check:
                good = check(Bench(arguments.arch, arguments.build, folder, ["nor"], CHECK_SECONDS))
            else:
                bench = Bench(arguments.arch, arguments.build, folder, media, MEASURE_SECONDS)
                good = measure(bench, arguments, media)
    except run.Failed as trouble:
        sys.exit(f"{arguments.arch}: not done: {trouble}")
    sys.exit(0 if good else 1)


if __name__ == "__main__":
    main()
