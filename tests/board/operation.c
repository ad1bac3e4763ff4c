/*
 * The library's operations on bonds and bridges as commands, for scripts that can only start
 * programs.
 *
 * usage: operation NAME ARGUMENT...; exit status 0 when the operation returned true
 */
#include "CommonApi.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

struct Command {
    const char* name;
    int least; /* arguments */
    bool (*run)(int count, char** arguments);
};

static bool RunBond(int count, char** arguments)
{
    const char** members = (const char**)(arguments + 2);
    return Bond(arguments[0], members, count - 2, (NICBondMode)atoi(arguments[1]));
}

static bool RunUnBond(int count, char** arguments)
{
    (void)count;
    return UnBond(arguments[0]);
}

static bool RunHash(int count, char** arguments)
{
    (void)count;
    return SetBondHashPolicy(arguments[0], (unsigned char)atoi(arguments[1]));
}

static bool RunMtu(int count, char** arguments)
{
    (void)count;
    return NetSetMtubyName(arguments[0], atoi(arguments[1]));
}

static bool RunBridge(int count, char** arguments)
{
    return Bridge(arguments[0], arguments + 1, count - 1);
}

static bool RunUnBridge(int count, char** arguments)
{
    (void)count;
    return UnBridge(arguments[0]);
}

static bool RunTree(int count, char** arguments)
{
    (void)count;
    STPInfo tree;
    memset(&tree, 0, sizeof(tree));
    tree.mode = (uint8_t)atoi(arguments[1]);
    tree.enable = (uint8_t)atoi(arguments[2]);
    return BridgeControl(arguments[0], &tree);
}

static bool RunRecover(int count, char** arguments)
{
    (void)count;
    return NetCardRecover(arguments[0]);
}

static bool RunActive(int count, char** arguments)
{
    (void)count;
    char name[16];
    if (!GetBondActiveSlave(arguments[0], name, sizeof(name))) return false;
    printf("%s", name);
    return true;
}

/* TYPE HOST NAME in front of each. */
static NetVirtInterName LinkOf(char** arguments)
{
    NetVirtInterName name;
    memset(&name, 0, sizeof(name));
    name.eType = (NetVirtInterType)atoi(arguments[0]);
    snprintf(name.hostName, sizeof(name.hostName), "%s", arguments[1]);
    snprintf(name.virtName, sizeof(name.virtName), "%s", arguments[2]);
    return name;
}

static bool RunAddLink(int count, char** arguments)
{
    (void)count;
    NetVirtInterInfo info;
    memset(&info, 0, sizeof(info));
    info.interName = LinkOf(arguments);
    if (info.interName.eType == virtTypeIpVlan) {
        info.interParam.ipVlAttr.eMode = (NetIpVlanMode)atoi(arguments[3]);
        info.interParam.ipVlAttr.eFlag = (NetIpVlanFlag)atoi(arguments[4]);
    } else {
        info.interParam.macVlAttr.eMode = (NetMacVlanMode)atoi(arguments[3]);
        info.interParam.macVlAttr.eFlag = (NetMacVlanFlag)atoi(arguments[4]);
    }
    return NetVirtInterAdd(&info);
}

static bool RunDelLink(int count, char** arguments)
{
    (void)count;
    NetVirtInterName name = LinkOf(arguments);
    return NetVirtInterDel(&name);
}

static const struct Command kCommands[] = {
    {"bond", 3, RunBond},       {"unbond", 1, RunUnBond},   {"hash", 2, RunHash},
    {"mtu", 2, RunMtu},         {"bridge", 2, RunBridge},   {"unbridge", 1, RunUnBridge},
    {"tree", 3, RunTree},       {"recover", 1, RunRecover}, {"active", 1, RunActive},
    {"addlink", 5, RunAddLink}, {"dellink", 3, RunDelLink},
};

int main(int argc, char** argv)
{
    for (size_t i = 0; argc > 1 && i < sizeof(kCommands) / sizeof(kCommands[0]); ++i) {
        if (strcmp(argv[1], kCommands[i].name) != 0 || argc - 2 < kCommands[i].least) continue;
        return kCommands[i].run(argc - 2, argv + 2) ? 0 : 1;
    }
    fprintf(stderr, "operation: no such command\n");
    return 2;
}
