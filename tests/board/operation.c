/* SPDX-FileCopyrightText: 2026 the Vorlix network layer authors */
/* SPDX-License-Identifier: MIT */

/*
 * The library's operations as commands, for scripts that can only start programs.
 *
 * usage: operation NAME ARGUMENT...; exit status 0 when the operation returned true
 *
 * The log goes to standard output. What operations on the device's own hardware tell goes to the
 * standard error, so that a script can take the two apart.
 */
#include "Backup.h"
#include "Base.h"
#include "CommonApi.h"
#include "Net3.h"
#include "Switch.h"

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

/* ---- limits on peers, blocked ports */

/* CARD, then ADDRESS MBIT FLAGS for each limit. */
static bool RunLimit(int count, char** arguments)
{
    NetTc limits[8];
    memset(limits, 0, sizeof(limits));
    int number = 0;
    for (int i = 1; i + 2 < count && number < 8; i += 3, ++number) {
        snprintf(limits[number].ipAddr, sizeof(limits[number].ipAddr), "%s", arguments[i]);
        limits[number].bandWidth = atoi(arguments[i + 1]);
        limits[number].flags = atoi(arguments[i + 2]);
    }
    return TrafCtrlSetBand(arguments[0], limits, number);
}

/* Tells the saved limits on the standard error, apart from the log. */
static bool RunLimits(int count, char** arguments)
{
    (void)count;
    NetTc limits[32];
    int number = 32;
    if (!TrafCtrlGetBand(arguments[0], limits, &number)) return false;
    for (int i = 0; i < number; ++i) {
        fprintf(stderr, "%s %d\n", limits[i].ipAddr, limits[i].bandWidth);
    }
    return true;
}

static bool RunUnLimit(int count, char** arguments)
{
    (void)count;
    return TrafCtrlUnSetBand(arguments[0], arguments[1]);
}

static bool RunBlock(int count, char** arguments)
{
    (void)count;
    return PortCtrlDisablePort(arguments[0], atoi(arguments[1]));
}

static bool RunFree(int count, char** arguments)
{
    (void)count;
    return PortCtrlEnablePort(arguments[0], atoi(arguments[1]));
}

/* ---- the switch chip and the power supply of its ports */

/* Asks for each name in turn, in one process. */
static bool RunPorts(int count, char** arguments)
{
    for (int i = 0; i < count; ++i) {
        int num = 0;
        if (!GetSwitchPortNum(arguments[i], &num)) return false;
        fprintf(stderr, "%d\n", num);
    }
    return true;
}

static bool RunLinks(int count, char** arguments)
{
    (void)count;
    int mask = 0;
    if (!GetSwitchMask(arguments[0], &mask)) return false;
    fprintf(stderr, "0x%x\n", (unsigned)mask);
    return true;
}

static bool RunPortOf(int count, char** arguments)
{
    (void)count;
    int port = 0;
    if (!GetSwitchPortByMac(arguments[0], arguments[1], &port)) return false;
    fprintf(stderr, "%d\n", port);
    return true;
}

static bool RunStatus(int count, char** arguments)
{
    (void)count;
    SwitchPortStatus status[16];
    int num = atoi(arguments[1]);
    if (num > 16 || !GetSwitchStatus(arguments[0], status, &num)) return false;
    for (int i = 0; i < num; ++i) {
        const SwitchPortStatus* port = &status[i];
        fprintf(stderr, "%d %d %s %d %s\n", port->port, port->link, port->ip, port->ipType,
                port->mac);
    }
    return true;
}

static bool RunIsolate(int count, char** arguments)
{
    (void)count;
    return NetSwitch_SetPortIsolation(arguments[0], atoi(arguments[1])) == 0;
}

static bool RunSwitchName(int count, char** arguments)
{
    (void)count;
    (void)arguments;
    char name[16] = "";
    if (!GetSwitchInterface(name, sizeof(name))) return false;
    fprintf(stderr, "%s\n", name);
    return true;
}

static bool RunPoeInfo(int count, char** arguments)
{
    (void)count;
    (void)arguments;
    PoeInfo_t info;
    if (!GetPoEPowerInfo(&info)) return false;
    fprintf(stderr, "0x%x 0x%x %u %u %u %u %u %u 0x%x 0x%x %u %u %u %u %u\n", info.detFlag,
            info.powerFlag, info.totalPower, info.power[0], info.power[3], info.power[31],
            info.powerOff, info.powerFail, info.powerOnMask, info.powerOffMask, info.ratePower,
            info.availablePower, info.averagePower, info.reserved[0], info.reserved[37]);
    return true;
}

static uint32_t Word(const char* text)
{
    return (uint32_t)strtoul(text, NULL, 0);
}

static bool RunPoeOn(int count, char** arguments)
{
    (void)count;
    return SetPoEPowerOn(Word(arguments[0]));
}

static bool RunPoeOff(int count, char** arguments)
{
    (void)count;
    return SetPoEPowerOff(Word(arguments[0]));
}

static bool RunPoeTotal(int count, char** arguments)
{
    (void)count;
    return SetPoETotalPower(Word(arguments[0]));
}

/* ---- the backup memory, the internal bridge, the switch of the spanning tree */

static bool RunBeenReset(int count, char** arguments)
{
    (void)count;
    (void)arguments;
    return NetCheckBeenReset();
}

static bool RunInternal(int count, char** arguments)
{
    (void)count;
    (void)arguments;
    return BridgeByInterNic(NULL);
}

static bool RunUnInternal(int count, char** arguments)
{
    (void)count;
    return UnBridgeByInterNic(arguments[0]);
}

static bool RunTreeSwitch(int count, char** arguments)
{
    (void)count;
    NetInterfaceDesc card = {.name = arguments[0]};
    NetInterface* object = NULL;
    STPInfo tree;
    memset(&tree, 0, sizeof(tree));
    tree.enable = (uint8_t)atoi(arguments[1]);
    return createNetInterface(&card, &object) == 0 && object->setSTP(object, &tree) == 0;
}

static const struct Command kCommands[] = {
    {"bond", 3, RunBond},
    {"unbond", 1, RunUnBond},
    {"hash", 2, RunHash},
    {"mtu", 2, RunMtu},
    {"bridge", 2, RunBridge},
    {"unbridge", 1, RunUnBridge},
    {"tree", 3, RunTree},
    {"recover", 1, RunRecover},
    {"active", 1, RunActive},
    {"addlink", 5, RunAddLink},
    {"dellink", 3, RunDelLink},
    {"limit", 4, RunLimit},
    {"limits", 1, RunLimits},
    {"unlimit", 2, RunUnLimit},
    {"block", 2, RunBlock},
    {"free", 2, RunFree},
    {"ports", 1, RunPorts},
    {"links", 1, RunLinks},
    {"port-of", 2, RunPortOf},
    {"status", 2, RunStatus},
    {"isolate", 2, RunIsolate},
    {"switch-name", 0, RunSwitchName},
    {"poe-info", 0, RunPoeInfo},
    {"poe-on", 1, RunPoeOn},
    {"poe-off", 1, RunPoeOff},
    {"poe-total", 1, RunPoeTotal},
    {"been-reset", 0, RunBeenReset},
    {"internal", 0, RunInternal},
    {"uninternal", 1, RunUnInternal},
    {"tree-switch", 2, RunTreeSwitch},
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
