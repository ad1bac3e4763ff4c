#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT

"""Runs one case on a virtual board.

usage: tests/board/run.py ARCH[:RELEASE] BUILD_FOLDER CASE.sh

The board is a machine emulated by QEMU with a stock kernel, of Debian's release bookworm unless another one
is named, a small image of real tools, and the files of BUILD_FOLDER. A case names its wires in a line
"# wires: N": card i of the board and card i of its peer hang on wire i. The guest speaks on its serial line;
a line "HOST link ethI off" or "on" is carried out here and answered. Exit status 0 when every check of the
case passed.

The board's time runs by its instructions, so that it waits as long on a busy machine as on a quiet one, and
it is ended after a number of them, not of seconds. A case that is there to be watched or measured has a line
"# time: real".
"""

import json
import os
import re
import shutil
import socket
import subprocess
import sys
import tempfile
import threading
import time

HERE = os.path.dirname(os.path.abspath(__file__))
SKIPPED = 77

MACHINES = {
    "amd64": ["qemu-system-x86_64", "-M", "q35", "-vga", "none"],
    "arm64": ["qemu-system-aarch64", "-M", "virt", "-cpu", "cortex-a53"],
    # What the machine has beyond 4 GiB, this kernel cannot reach.
    "armhf": ["qemu-system-arm", "-M", "virt,highmem=off", "-cpu", "cortex-a15"],
}
CONSOLES = {"amd64": "ttyS0", "arm64": "ttyAMA0", "armhf": "ttyAMA0"}
# The kernel's tests of its own ciphers go on beside the case, for twenty seconds of an emulated processor.
QUICKER = "cryptomgr.notests"
TIME_BY_INSTRUCTIONS = ["-icount", "shift=4,sleep=off"]
INSTRUCTIONS = 100_000_000_000  # the longest case takes a tenth of them
STANDSTILL = 1200  # seconds, for an emulator that does nothing at all

RELEASES = ("bookworm", "bullseye", "trixie")  # the first unless another is named


def head_of(case, name, default):
    """What the case gives in its head."""
    with open(case, encoding="utf-8") as text:
        found = re.search(rf"^# {name}: (\w+)", text.read(), re.M)
    return found.group(1) if found else default


def case_image(build, case, folder):
    """An archive with the case and the files under test, to stand behind the base image."""
    root = os.path.join(folder, "root")
    os.makedirs(os.path.join(root, "case"))
    os.makedirs(os.path.join(root, "sbin"))
    shutil.copy(case, os.path.join(root, "case", "case.sh"))
    shutil.copy(os.path.join(HERE, "lib.sh"), os.path.join(root, "case", "lib.sh"))
    for program in ("lanrise", "lanrise-status"):
        shutil.copy(os.path.join(build, "cmd", program, program), os.path.join(root, "sbin"))
    shutil.copy(os.path.join(build, "tests/board/operation"), os.path.join(root, "sbin"))
    names = subprocess.run(["find", "."], cwd=root, capture_output=True, check=True).stdout
    return subprocess.run(["cpio", "-o", "-H", "newc", "-R", "0:0", "--quiet"], cwd=root, input=names,
                          capture_output=True, check=True).stdout


def make_image(board, build, case, folder):
    base = subprocess.run([os.path.join(HERE, "image.sh"), board], stdout=subprocess.PIPE, check=True,
                          text=True).stdout.strip()
    image = os.path.join(folder, "image.cpio")
    with open(image, "wb") as out:
        with open(base, "rb") as archive:
            shutil.copyfileobj(archive, out)
        out.write(case_image(build, case, folder))
    return image


def network(wires):
    """Card i and its peer on hub i. The peers come behind all cards, so they get the higher numbers."""
    options = []
    for end, name in enumerate(("eth", "p")):
        for wire in range(wires):
            card = f"{name}{wire}"
            options += ["-netdev", f"hubport,id={card},hubid={wire}"]
            options += ["-device", f"virtio-net-pci,netdev={card},id=nic{card},romfile=,"
                                   f"mac=02:00:00:00:0{end}:0{wire},speed=1000,duplex=full"]
    return options


def command_line(arch, board, image, wires, control, memory="256", time_source=TIME_BY_INSTRUCTIONS):
    return MACHINES[arch] + [
        "-accel", "tcg", "-m", memory, "-smp", "1", "-display", "none", "-nodefaults", "-no-reboot",
        "-serial", "stdio", "-qmp", f"unix:{control},server=on,wait=off",
        "-kernel", os.path.join(board, "boot/kernel"), "-initrd", image,
        "-append", f"console={CONSOLES[arch]} panic=-1 quiet net.ifnames=0 {QUICKER}",
    ] + time_source + network(wires)


class Control:
    """The machine's own control line."""

    def __init__(self, machine, path):
        self.line = socket.socket(socket.AF_UNIX)
        while True:
            try:
                self.line.connect(path)
                break
            except (FileNotFoundError, ConnectionRefusedError):
                if machine.poll() is not None:
                    raise
                time.sleep(0.005)
        self.lock = threading.Lock()
        self.answers = self.line.makefile("r")
        self.answers.readline()  # the greeting
        self.tell("qmp_capabilities")

    def tell(self, command, **arguments):
        with self.lock:
            self.line.sendall(json.dumps({"execute": command, "arguments": arguments}).encode())
            for answer in map(json.loads, self.answers):
                if "return" in answer:
                    return answer["return"]
                if "error" in answer:
                    raise RuntimeError(f"{command}: {answer['error']['desc']}")
        raise RuntimeError(f"{command}: no answer")

    def instructions(self):
        """How many the machine has carried out."""
        return self.tell("query-replay")["icount"]


class Limit(threading.Thread):
    """Ends a machine that has carried out too many instructions, or none for very long."""

    def __init__(self, machine, control):
        super().__init__(daemon=True)
        self.machine = machine
        self.control = control
        self.over = threading.Event()

    def run(self):
        first = last = None  # a machine from a saved state goes on counting
        since = time.monotonic()
        while not self.over.wait(1):
            try:
                done = self.control.instructions()
            except (OSError, RuntimeError, ValueError):
                return  # the machine has ended
            first = done if first is None else first
            if done != last:
                last, since = done, time.monotonic()
            if done - first > INSTRUCTIONS or time.monotonic() - since > STANDSTILL:
                print(f"the board is ended after {done - first} instructions", flush=True)
                self.machine.kill()
                return


def serve(machine, control):
    """Shows what the guest says and does what it asks; returns its last word."""
    result = None
    for line in machine.stdout:
        line = line.rstrip("\r\n")
        request = re.match(r"HOST link (\w+) (on|off)", line)
        if request:
            control.tell("set_link", name="nic" + request.group(1), up=request.group(2) == "on")
            machine.stdin.write("done\n")
            machine.stdin.flush()
            continue
        print(line, flush=True)
        found = re.match(r"BOARD (\d+) ok, (\d+) failed", line)
        if found:
            result = (int(found.group(1)), int(found.group(2)))
    return result


class Failed(Exception):
    """A guest did not do what it was told."""


class Ended(Failed):
    """Its machine is no more: the power failed, it could not get ready, or it hung and was ended."""


class Guest:
    """A machine whose guest takes orders, one at a time: `obey` of lib.sh."""

    machine = None

    def read_until(self, word):
        """The lines before the one that begins with the word, and that one."""
        lines = []
        for line in self.machine.stdout:
            line = line.rstrip("\r\n")
            if line.startswith(word):
                return lines, line
            lines.append(line)
        reason = next((i for i, line in enumerate(lines) if line.startswith("NOT READY")), -5)
        raise Ended(f"the board ended before {word}, {self.machine.wait()}: {lines[reason:]}")

    def tell(self, order):
        """Has the guest do something; what it says. One that cannot is of no more use."""
        self.machine.stdin.write(order + "\n")
        lines, last = self.read_until("DONE")
        if last != "DONE 0":
            self.machine.kill()
            raise Failed(f"the board fails to {order}, {last}: {lines[-5:]}")
        return lines


def kind_of(text):
    """The architecture and the release of a board, as they are given on a command line."""
    arch, _, release = text.partition(":")
    release = release or RELEASES[0]
    if arch not in MACHINES or release not in RELEASES:
        sys.exit(f"no board {text}: {', '.join(MACHINES)}, each with :{', :'.join(RELEASES)}")
    return arch, release


def board_of(arch, release=RELEASES[0]):
    """The fetched parts of a board; where they cannot be had, the case is skipped, by name."""
    for tool in (MACHINES[arch][0], "cpio", "depmod", "make"):
        if shutil.which(tool) is None and not os.path.exists("/sbin/" + tool):
            print(f"skipped: no {tool} on this machine")
            sys.exit(SKIPPED)
    fetched = subprocess.run([os.path.join(HERE, "fetch.sh"), arch, release], capture_output=True, text=True,
                             check=False)
    if fetched.returncode != 0:
        print(f"skipped: the packages of {release} for {arch} cannot be fetched: {fetched.stderr}")
        sys.exit(SKIPPED)
    return fetched.stdout.strip()


def main():
    kind, build, case = sys.argv[1:]
    arch, release = kind_of(kind)
    board = board_of(arch, release)
    with tempfile.TemporaryDirectory() as folder:
        image = make_image(board, build, case, folder)
        path = os.path.join(folder, "control")
        command = command_line(arch, board, image, int(head_of(case, "wires", "1")), path,
                               time_source=[] if head_of(case, "time", "") == "real" else TIME_BY_INSTRUCTIONS)
        machine = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                                   text=True, errors="replace")
        control = Control(machine, path)
        limit = Limit(machine, control)
        limit.start()
        result = serve(machine, control)
        machine.wait()
        limit.over.set()
    if result is None:
        print("the board ended without a result")
    sys.exit(0 if result and result[0] > 0 and result[1] == 0 else 1)


if __name__ == "__main__":
    main()
