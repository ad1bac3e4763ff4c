#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT

"""Ctrl-C ends ./test at any moment: status 130, no process and no temporary file stays behind.

Runs `./test quick` of a tree without sources, whose tools have work for ever, and interrupts it as a terminal
does: in a build, in a ring, and, as the board does it, beside a child that the signal does not reach.
"""
import os
import pathlib
import select
import shutil
import signal
import subprocess
import sys
import tempfile

TOP = pathlib.Path(__file__).resolve().parent.parent
MOMENTS = {"a build": "cmake --build", "a ring": "ctest --test-dir"}
PATIENCE = 300  # seconds

TOOL = """#!/bin/sh
[ "$1" != --version ] || { echo "tool version 14.0"; exit; }
case "${0##*/} $1" in
"$MOMENT") ;;
*) exit 0 ;;
esac
mktemp >/dev/null
# ./test has processes of its own
[ "$PPID" != 1 ] || setsid sh -c "trap '' INT; exec sleep 100000" &
echo begun >&"$BEGUN"
exec sleep 100000
"""


def tree(folder):
    """A checkout with nothing to build, and tools that wait where they are told to."""
    for name in ("test", "tools/lib.sh", "tools/skips"):
        (folder / name).parent.mkdir(exist_ok=True)
        shutil.copy(TOP / name, folder / name)
    (folder / "bin").mkdir()
    for name in ("cmake", "ctest", "clang-format"):
        tool = folder / "bin" / name
        tool.write_text(TOOL if name != "cmake" else TOOL.replace("14.0", "3.99").replace("tool", "cmake"))
        tool.chmod(0o755)


def what_stays(folder, command):
    """What is wrong after an interruption while `command` runs."""
    files = pathlib.Path(tempfile.mkdtemp(dir=folder))
    heard, said = os.pipe()
    environment = dict(os.environ, MOMENT=command, BEGUN=str(said), TMPDIR=str(files),
                       PATH=f"{folder / 'bin'}:{os.environ['PATH']}")
    run = subprocess.Popen([folder / "test", "quick"], env=environment, pass_fds=[said], start_new_session=True,
                           stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.STDOUT,
                           preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_DFL))
    os.close(said)
    if os.read(heard, 100) != b"begun\n":
        return ["it did not come so far"]
    os.killpg(run.pid, signal.SIGINT)
    status = run.wait()
    ended = select.select([heard], [], [], PATIENCE)[0]  # nobody is left who could write
    os.close(heard)
    return ([f"status {status}"] if status != 130 else []) + ([] if ended else ["a process goes on"]) + [
        f"file: {name}" for name in files.rglob("*")]


def main():
    failed = False
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        tree(folder)
        for moment, command in MOMENTS.items():
            for fault in what_stays(folder, command):
                print(f"interrupted in {moment}: {fault}")
                failed = True
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
