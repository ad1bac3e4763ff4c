# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT
#
# wires: 1
# The power supply of the ports: its state, ports fed and cut off, and what it refuses.

for request in poe-info "poe-on 1" "poe-off 1" "poe-total 1"; do
    # shellcheck disable=SC2086  # an operation and its argument
    fails "without the device, $request" operation $request
    cp /tmp/output /tmp/log
    is "is told" "$(messages)" "Error: open /dev/qv_poe failed.[No such file or directory]"
done

modprobe board with_poe=1
succeeds "ports are fed" operation poe-on 0x80000009
succeeds "one is cut off" operation poe-off 0x00000001
succeeds "the total is set" operation poe-total 4000000000
is "values travel as they are" "$(trace)" "poe on 0x80000009
poe off 0x1
poe total 0xee6b2800"
is "every field is in its place" "$(told poe-info)" \
    "0xf 0x80000008 4000000000 0 73 101 31 32 0x80000009 0x1 33 34 35 36 37"
is "no word was said" "$(messages)" ""

refused()
{
    refuse 16
    # shellcheck disable=SC2086  # an operation and its argument
    fails "the driver refuses $1" operation $1
    cp /tmp/output /tmp/log
    is "and is told" "$(messages)" "Error: cmd $2 error.[Device or resource busy]"
}
refused poe-info 2164281345
refused "poe-on 6" 1074024451
refused "poe-off 8" 1074024450
refused "poe-total 5" 1074024453
is "nothing has changed" "$(told poe-info)" \
    "0xf 0x80000008 4000000000 0 73 101 31 32 0x80000009 0x1 33 34 35 36 37"
