#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
# SPDX-License-Identifier: MIT

"""Reads Yocto recipes by the rules of bitbake's files, without bitbake: every logical line is a comment, an
inherit or an assignment of a quoted text, every ${@...} is one Python expression, and every variable that
is not the recipe's own is one that Yocto or bitbake defines.

usage: recipe.py FILE...
       recipe.py --hosts FILE HOST...    which of the hosts COMPATIBLE_HOST lets pass
"""
import re
import sys

# Names of bitbake and of the layer core that a recipe may rely on.
KNOWN = {'LAYERDIR', 'PN', 'sbindir', 'libexecdir', 'sysconfdir', 'datadir', 'systemd_system_unitdir'}
ASSIGNMENT = re.compile(r'([A-Za-z_][\w-]*(?:\[\w+\])?)((?::[\w${}-]+)*) *(\?\?=|\?=|:=|\+=|=\+|\.=|=\.|=) *"([^"]*)"$')


def complaints(path):
    text = open(path, encoding='utf-8').read()
    own = set(re.findall(r'^([A-Za-z_]\w*)', text, re.M))
    for number, line in enumerate(text.replace('\\\n', '').split('\n'), 1):
        if not line or line.startswith('#') or re.fullmatch(r'inherit( [\w.-]+)+', line):
            continue
        match = ASSIGNMENT.fullmatch(line)
        if not match:
            yield f'{path}: logical line {number} is neither comment, inherit nor assignment: {line}'
            continue
        for expression in re.findall(r'\$\{@(.*?)\}', match[4]):
            try:
                compile(expression, path, 'eval')
            except SyntaxError as error:
                yield f'{path}: {expression}: {error}'
        for name in re.findall(r'\$\{(\w+)\}', line):
            if name not in own | KNOWN:
                yield f'{path}: unknown variable {name}'


def compatible(path, hosts):
    wanted = re.search(r'^COMPATIBLE_HOST = "(.*)"$', open(path, encoding='utf-8').read(), re.M)[1]
    return [host for host in hosts if re.match(wanted, host)]


if sys.argv[1] == '--hosts':
    print(' '.join(compatible(sys.argv[2], sys.argv[3:])))
    sys.exit()
found = [complaint for path in sys.argv[1:] for complaint in complaints(path)]
print('\n'.join(found))
sys.exit(bool(found))
