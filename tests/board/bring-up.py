#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT

"""Does what docs/bring-up.md tells a new user, word for word, on an empty virtual board.

usage: tests/board/bring-up.py ARCHITECTURE BUILD_FOLDER
"""
import os
import re
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
PAGE = os.path.join(HERE, "../../docs/bring-up.md")

BEFORE = """# wires: 4
cards 4
rm -rf /mnt/mtd
ip -n peer link add switch type bridge
for port in p0 p1; do ip -n peer link set $port master switch; done
ip -n peer link set switch up
ip -n peer addr add 10.1.0.1/24 dev switch
ip -n peer addr add 10.2.0.1/24 dev p2
step()
{
    cat >/tmp/step
    succeeds "$1" sh -e /tmp/step
}
"""

AFTER = """
is 'the resolvers of the system' "$(sed -n 's/^nameserver //p' /etc/resolv.conf | head -n 1)" 8.8.8.8
is 'the members' "$(members bond0)" 'eth0 eth1'
is 'the ports' "$(ls /sys/class/net/br0/brif | tr '\\n' ' ')" 'eth2 eth3 '
is 'the default card' "$(setting network DEFAULT_ETH)" bond0
"""


def steps(page):
    """The boxes to do, by the heading that they stand under."""
    heading = ""
    for found in re.finditer(r"^## ([^\n]*)$|^```sh\n(.*?)^```$", page, re.M | re.S):
        if found.group(1):
            heading = found.group(1)
        else:
            yield heading, found.group(2)


def main():
    arch, build = sys.argv[1:]
    with open(PAGE, encoding="utf-8") as page:
        todo = list(steps(page.read()))
    if len(todo) < 8:
        sys.exit("bring-up.py: the page has lost its steps")
    with tempfile.TemporaryDirectory() as folder:
        case = os.path.join(folder, "case.sh")
        with open(case, "w", encoding="utf-8") as script:
            script.write(BEFORE)
            for heading, commands in todo:
                name = heading.replace("'", "")
                script.write(f"step '{name}' <<'STEP'\n{commands}STEP\n")
            script.write(AFTER)
        return subprocess.run([os.path.join(HERE, "run.py"), arch, build, case], check=False).returncode


if __name__ == "__main__":
    sys.exit(main())
