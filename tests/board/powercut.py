#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT

"""Cuts a board's power while it saves, again and again, and looks at what the next boot makes of it.

usage: tests/board/powercut.py [--cuts N] [--machines N] [--byte N] ARCH[:RELEASE] BUILD_FOLDER [WORKLOAD...]

The flash is a file of this machine. A cut falls after a given number of bytes that the flash takes; the
bytes of a workload are counted first, and the cuts are spread evenly over them. After each, the board boots
and is judged, and boots again from settings that no boot of the run has left before, which must change
nothing. For every fourth cut the backup memory is dead: it forgets with each loss of power.

A board that is ready to mount its flash is kept as a saved state of QEMU, so no boot waits for the kernel;
nothing of the kernel's start depends on the flash. Time runs by instructions, so equal cuts are equal and
a pause costs nothing.

Prints a table of outcomes; exit status 0 when every board came back as it must.
"""

import argparse
import collections
import concurrent.futures
import os
import re
import shutil
import subprocess
import sys
import tempfile
import threading
import time

import run

SECTOR = 16 * 1024
FLASH_SIZE = 256 * 1024  # its last sector is what the battery keeps

KEY_LINE = re.compile(r"[A-Z_]+ = [^=]*|nameserver [0-9a-f.:]+")
LINKED = ("network2", "networketh2")


# ---- what a board has saved, and what it may have after a cut

def gateway_of(address):
    return address.rsplit(".", 1)[0] + ".1"


def card(address, *more):
    """Lines of a card's file: an address in a net of its own, with its gateway."""
    return [f"HOSTIP = {address}", "SUBMASK = 255.255.255.0", f"GATEWAYIP = {gateway_of(address)}",
            "MTU = 1500", *more]


FILES = {"eth0": "network", "eth1": "network1", "eth2": "networketh2", "eth3": "networketh3",
         "bond0": "networkbond0", "br0": "networkbr0"}
SAVED = {"eth0": "10.1.0.5", "eth1": "10.2.0.5", "eth2": "10.3.0.5", "eth3": "10.4.0.5",
         "bond0": "10.5.0.5"}
FACTORY = {"eth0": "192.168.0.108", "eth1": "192.168.0.109", "eth2": "192.168.0.110",
           "eth3": "192.168.0.111", "bond0": "192.168.2.108"}
CARDS = ("eth0", "eth1", "eth2", "eth3")


class Workload:
    """What a board is doing when the power fails."""

    def __init__(self, name, order, new=None, masters=None, broken=None, halves=False):
        self.name = name
        self.order = order  # of the guest, after a boot, or a boot itself
        self.new = new or {}  # addresses that it saves
        self.masters = masters or {}  # bonds and bridges that it saves
        self.broken = broken  # of a boot: what it finds instead of good settings
        self.halves = halves  # there are moments when no copy holds a whole address, old or new


WORKLOADS = [
    Workload("boot", "boot", broken={}),
    Workload("repairs", "boot", masters={"bond0": {"eth1", "eth3"}}, broken={
        "network": ["HOSTIP = 300.1.1.1", "rubbish", "MTU"],
        "network1": card(SAVED["eth1"], "BONDED = 1", "BONDNAME = bond0"),
        "networketh2": None,
        "networketh3": card(SAVED["eth3"], "BONDED = 1", "BONDNAME = bond0", "BRIDGEEDED = 0"),
        "network2": card(SAVED["eth2"], "BRIDGEEDED = 1", "BRIDGENAME = br1"),
        "networkbond0": card(SAVED["bond0"], "BONDMODE = 1", "BONDMEMBERS = eth0,eth2"),
        "networkbr7": ["BRIDGEMEMBERS = eth2,eth3"],
    }),
    Workload("address", "lanrise eth0 10.1.0.77 255.255.255.0 10.1.0.1 >/tmp/log",
             new={"eth0": "10.1.0.77"}),
    Workload("move", "lanrise eth0 10.9.0.77 255.255.255.0 10.9.0.1 >/tmp/log",
             new={"eth0": "10.9.0.77"}, halves=True),
    Workload("bond", "operation bond bond0 1 eth0 eth1 >/tmp/log", masters={"bond0": {"eth0", "eth1"}}),
    Workload("bridge", "operation bridge br0 eth2 eth3 >/tmp/log; "
                       "lanrise br0 10.6.0.5 255.255.255.0 10.6.0.1 >/tmp/log",
             new={"br0": "10.6.0.5"}, masters={"br0": {"eth2", "eth3"}}),
]


def write_settings(files):
    """The order that writes them in the guest."""
    orders = []
    for name, lines in files.items():
        if lines is None:
            orders.append(f"rm -f $Config/{name}")
        else:
            orders.append(f"settings {name} " + " ".join(f"'{line}'" for line in lines))
    return "; ".join(orders)


# ---- a board

class Board(run.Guest):
    """A running machine, from its start or from a saved state, with the flash as it was left."""

    def __init__(self, bench, flash, state=None):
        self.folder = tempfile.mkdtemp(dir=bench.folder)
        self.shared = os.path.join(self.folder, "flash")
        self.place_flash(flash)
        control = os.path.join(self.folder, "control")
        command = run.command_line(bench.arch, bench.parts, bench.image, 4, control, "128")
        command += ["-device", "ivshmem-plain,memdev=flash,master=on", "-object",
                    f"memory-backend-file,id=flash,size={FLASH_SIZE},mem-path={self.shared},share=on"]
        if state:
            command += ["-S", "-incoming", f"exec:cat {state}"]
        self.errors = os.path.join(self.folder, "errors")
        with open(self.errors, "w", encoding="utf-8") as errors:
            self.machine = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                            stderr=errors, text=True, errors="replace", bufsize=1)
        self.control = self.take_control(control)
        self.limit = run.Limit(self.machine, self.control)
        self.limit.start()
        if state:
            while self.control.tell("query-status")["status"] == "inmigrate":
                time.sleep(0.005)
            self.place_flash(flash)  # the saved state brought its own
            self.control.tell("cont")
        else:
            self.read_until("READY")

    def take_control(self, path):
        try:
            return run.Control(self.machine, path)
        except OSError:
            with open(self.errors, encoding="utf-8") as told:
                raise RuntimeError(f"no board: {told.read()}") from None

    def place_flash(self, flash):
        mode = "r+b" if os.path.exists(self.shared) else "wb"
        with open(self.shared, mode) as file:
            file.write(flash)

    def flash(self):
        with open(self.shared, "rb") as file:
            return file.read()

    def save(self, path):
        """Keeps the machine as it is in a file, and ends it; what its flash holds then. It stands still
        meanwhile: of a running one the file may lack what it has just changed."""
        self.control.tell("stop")
        self.control.tell("migrate-set-parameters", **{"max-bandwidth": 1 << 33})
        self.control.tell("migrate", uri=f"exec:cat >{path}")
        while self.control.tell("query-migrate").get("status") != "completed":
            time.sleep(0.02)
        return self.end()

    def end(self):
        """Pulls the plug; what the flash holds then."""
        self.limit.over.set()
        self.machine.kill()
        self.machine.wait()
        flash = self.flash()
        self.machine.stdin.close()
        self.machine.stdout.close()
        shutil.rmtree(self.folder)
        return flash


Boot = collections.namedtuple("Boot", "memory before kept after flash")
Sight = collections.namedtuple("Sight", "files inodes addresses masters routes")


def bytes_of(line):
    return tuple(int(byte) for byte in line.split())


def look(lines):
    """What `files` and `network` of the guest tell."""
    sight = Sight({}, {}, {}, {}, [])
    name = None
    for line in lines:
        words = line.split()
        if line.startswith("|"):
            sight.files[name].append(line[1:])
        elif words[0] == "FILE":
            name = words[1]
            sight.files[name] = []
        elif words[0] == "MASTER":
            sight.masters[words[1]] = {member for member in words[2:] if member != "*"}
        elif "inet" in words:
            sight.addresses[words[1]] = words[3]
        elif "dev" in words:
            sight.routes.append(line)
        else:
            sight.inodes[words[1]] = words[0]
    sight.routes.sort()
    return sight


class Bench:
    """What all boards of a run have in common."""

    def __init__(self, kind, build, folder):
        self.arch, release = run.kind_of(kind)
        self.folder = folder
        self.parts = run.board_of(self.arch, release)
        self.image = run.make_image(self.parts, build, os.path.join(run.HERE, "powercut.sh"), folder)
        self.ready = os.path.join(folder, "ready")
        self.seen = set()
        self.lock = threading.Lock()
        blank = b"\xff" * (FLASH_SIZE - SECTOR) + bytes(SECTOR)
        Board(self, blank).save(self.ready)
        self.saved = self.after(blank, "mount_flash", "mkdir -p $Config", write_settings({
            "network": card(SAVED["eth0"]), "network1": card(SAVED["eth1"]),
            "network2": card(SAVED["eth2"]), "networketh3": card(SAVED["eth3"]),
            "networkbond0": card(SAVED["bond0"]),
        }), "boot", "wear", "boot")

    def after(self, flash, *orders):
        """What the flash holds after these orders."""
        board = Board(self, flash, self.ready)
        for order in orders:
            board.tell(order)
        return board.end()

    def is_new(self, boot):
        """Whether no boot of this run has left these settings before."""
        left = repr((sorted(boot.after.files.items()), len(linked(boot.after)), boot.kept))
        with self.lock:
            new = left not in self.seen
            self.seen.add(left)
        return new

    def arm(self, workload):
        """A board about to do its work: its saved state, its flash, the work's bytes and erasures."""
        state = os.path.join(self.folder, "armed")
        board = Board(self, self.saved, self.ready)
        board.tell("mount_flash")
        board.tell("boot" if workload.broken is None else write_settings(workload.broken))
        board.tell("sleep 10")  # until the file system has tidied up
        flash = board.save(state)
        board = Board(self, flash, state)
        board.tell("arm 0")
        board.tell(workload.order)
        spent = [int(count) for count in board.tell("spent")[0].split()]
        board.end()
        return state, flash, spent

    def cut(self, workload, state, flash, place):
        """The flash after the power failed at this byte, or at the work's end: the file system tidies up in
        the background, a little more or less each time."""
        board = Board(self, flash, state)
        board.tell(f"arm {place}")
        try:
            board.tell(workload.order)
        except run.Ended:
            if board.machine.wait() != 0:
                raise
        return board.end()

    def boot(self, flash, battery):
        """A boot on this flash: what it found, and what it left."""
        if not battery:
            flash = flash[:-SECTOR] + bytes(SECTOR)
        board = Board(self, flash, self.ready)
        board.tell("mount_flash")
        memory, *before = board.tell("memory; files")
        board.tell("boot")
        kept, *after = board.tell("memory; files; network")
        flash = board.end()
        return Boot(bytes_of(memory), look(before), bytes_of(kept), look(after), flash)


# ---- what must be true afterwards

def linked(sight):
    """The inodes of the two names of one file, as far as they are there."""
    return [sight.inodes[name] for name in LINKED if name in sight.inodes]


def bytes_in(sight, name):
    """Address, mask and gateway that a card's file holds, in the order of the backup memory."""
    lines = sight.files.get(FILES[name]) or (name == "eth2" and sight.files.get(LINKED[0])) or []
    settings = dict(line.split(" = ", 1) for line in lines if " = " in line)
    texts = [settings.get(key, "0.0.0.0") for key in ("HOSTIP", "SUBMASK", "GATEWAYIP")]
    return tuple(int(byte) for text in texts for byte in text.split("."))


def is_usable(triple):
    """Whether an address has its gateway in its net."""
    address, mask, gateway = triple[0:4], triple[4:8], triple[8:12]
    return max(triple) <= 255 and any(address) and all(
        (a ^ g) & m == 0 for a, m, g in zip(address, mask, gateway))


class Verdict:
    """What came out of one cut."""

    def __init__(self, workload, battery):
        self.workload = workload
        self.battery = battery
        self.outcomes = collections.Counter()
        self.findings = []

    def expect(self, condition, finding):
        if not condition:
            self.findings.append(finding)

    def judge_files(self, sight, allowed):
        for name, lines in sight.files.items():
            for line in lines:
                self.expect(KEY_LINE.fullmatch(line) or line in allowed, f"{name} holds [{line}]")
        pair = linked(sight)
        self.expect(pair, f"neither of {LINKED}")
        self.expect(len(set(pair)) == 1, f"{LINKED} are two files")
        if len(pair) == 1:
            self.outcomes["old name lost"] += 1
            self.expect(self.workload.broken, f"one of {LINKED} is gone")

    def judge_master(self, master, members, lost, after):
        self.expect(members == self.workload.masters.get(master), f"{master} has {sorted(members)}")
        address = after.addresses.get(master)
        if address is None and master not in FACTORY:
            self.outcomes["topology without address"] += 1
            return
        choices = [SAVED.get(master), self.workload.new.get(master)]
        choices += [FACTORY.get(master)] if FILES[master] in lost else []
        self.expect(address in [f"{choice}/24" for choice in choices if choice], f"{master} has {address}")

    def judge_card(self, name, boot):
        """What either copy holds whole is never lost, and nothing is left without an address."""
        places = {SAVED[name]: "saved", self.workload.new.get(name): "new", FACTORY[name]: "factory"}
        address = (boot.after.addresses.get(name) or "/").removesuffix("/24")
        kind = places.get(address)
        self.expect(kind, f"{name} has {address}")
        in_file = is_usable(bytes_in(boot.before, name))
        in_memory = name == "eth0" and is_usable(boot.memory)
        if kind == "factory":
            self.expect(not in_file and not in_memory, f"{name} has lost its address")
            self.expect(name != "eth0" or not self.battery or self.workload.halves,
                        "eth0 has lost its address though the memory lives")
        elif kind and in_memory and not in_file:
            kind = "from memory"
        self.outcomes[f"{'eth0' if name == 'eth0' else 'others'} {kind}"] += 1
        if name == "eth0":
            wanted = f"default via {gateway_of(address)} dev eth0 "
            self.expect([route for route in boot.after.routes if route.startswith("default")] == [wanted],
                        f"{boot.after.routes} without {wanted}")

    def judge(self, boot):
        before, after = boot.before, boot.after
        broken = [line for lines in (self.workload.broken or {}).values() for line in lines or []]
        self.judge_files(before, broken)
        lost = {name for name, lines in before.files.items() if not lines}
        self.outcomes["emptied files"] += len(lost)
        self.judge_files(after, [])
        for name in CARDS:
            self.expect(after.files.get(FILES[name]), f"{FILES[name]} is empty after a boot")
        members = set()
        for master, names in after.masters.items():
            members |= names
            if names:
                self.judge_master(master, names, lost, after)
        if self.workload.masters:
            self.outcomes["topology stands" if members else "cards alone"] += 1
        for name in CARDS:
            if name not in members:
                self.judge_card(name, boot)

    def compare(self, first, second):
        """A further boot changes nothing."""
        self.outcomes["further boots"] += 1
        for name in sorted(set(first.files) | set(second.files)):
            one, two = first.files.get(name), second.files.get(name)
            self.expect(one == two, f"a further boot changes {name}: {one} to {two}")
        for one, two in zip(first[1:], second[1:]):
            self.expect(one == two, f"a further boot changes {one} to {two}")


# ---- a run

def try_cut(bench, workload, armed, place, battery):
    verdict = Verdict(workload, battery)
    try:
        boot = bench.boot(bench.cut(workload, *armed, place), battery)
        verdict.judge(boot)
        if bench.is_new(boot):
            verdict.compare(boot.after, bench.boot(boot.flash, battery).after)
    except run.Failed as trouble:
        verdict.findings.append(str(trouble))
    for finding in verdict.findings:
        print(f"finding: {workload.name} --byte {place}, memory {'alive' if battery else 'dead'}: {finding}",
              flush=True)
    return verdict


OUTCOMES = ("eth0 saved", "eth0 new", "eth0 from memory", "eth0 factory", "others saved", "others factory",
            "topology stands", "cards alone", "topology without address", "emptied files", "old name lost",
            "further boots")


def tell_head():
    print("| Workload | Bytes | Erasures | Memory | Cuts | " + " | ".join(OUTCOMES) + " |")
    print("|---|---:|---:|---|---:|" + "---:|" * len(OUTCOMES), flush=True)


def tell_row(workload, spent, verdicts):
    sums = sum((verdict.outcomes for verdict in verdicts), collections.Counter())
    cells = [workload.name, *spent, "alive" if verdicts[0].battery else "dead", len(verdicts)]
    cells += [sums[outcome] for outcome in OUTCOMES]
    print("| " + " | ".join(str(cell) for cell in cells) + " |", flush=True)


def sweep(bench, workload, cuts, arguments):
    """Spreads the cuts over the workload's bytes; for each fourth the backup memory is dead."""
    state, flash, spent = bench.arm(workload)
    places = [1 + spent[0] * (2 * i + 1) // (2 * cuts) for i in range(cuts)]
    if arguments.byte:
        places = [arguments.byte]
    with concurrent.futures.ThreadPoolExecutor(arguments.machines) as pool:
        waiting = [pool.submit(try_cut, bench, workload, (state, flash), place, i % 4 != 3)
                   for i, place in enumerate(places)]
        verdicts = [future.result() for future in waiting]
    for battery in (True, False):
        of_one_kind = [verdict for verdict in verdicts if verdict.battery == battery]
        if of_one_kind:
            tell_row(workload, spent, of_one_kind)
    return verdicts


def command():
    parser = argparse.ArgumentParser(description="Cuts a board's power while it saves.")
    parser.add_argument("kind", metavar="arch[:release]", help="such as amd64, or armhf:trixie")
    parser.add_argument("build", help="folder of a build as shipped")
    parser.add_argument("workloads", nargs="*", help="of: " + ", ".join(work.name for work in WORKLOADS))
    parser.add_argument("--cuts", type=int, default=200, help="in all (200)")
    parser.add_argument("--byte", type=int, help="one cut, at this byte of each workload")
    parser.add_argument("--machines", type=int, default=2, help="at a time (2)")
    return parser.parse_intermixed_args()


def main():
    arguments = command()
    chosen = [work for work in WORKLOADS if work.name in arguments.workloads or not arguments.workloads]
    verdicts = []
    begin = time.time()
    tell_head()
    try:
        with tempfile.TemporaryDirectory(prefix="powercut-") as folder:
            bench = Bench(arguments.kind, arguments.build, folder)
            for i, workload in enumerate(chosen):
                cuts = arguments.cuts // len(chosen) + (i < arguments.cuts % len(chosen))
                verdicts += sweep(bench, workload, cuts, arguments)
    except run.Failed as trouble:
        sys.exit(f"{arguments.kind}: not done: {trouble}")
    findings = sum(len(verdict.findings) for verdict in verdicts)
    print(f"{arguments.kind}: {len(verdicts)} cuts, {findings} findings, {time.time() - begin:.0f} s")
    sys.exit(1 if findings or not verdicts else 0)


if __name__ == "__main__":
    main()
