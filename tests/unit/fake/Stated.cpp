// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "fake/Stated.h"

#include <algorithm>
#include <fnmatch.h>
#include <gtest/gtest.h>
#include <vector>

namespace fake {

namespace {

/// A file and the ways to open it: flags of `open`, with the mode of a new file, or of `fopen`.
struct Rule {
    const char* path;
    std::vector<std::string> ways;
};

// The first that the path fits counts.
const std::vector<Rule>& Rules()
{
    static const std::vector<Rule> kRules = {
        {"/proc/sys/net/ipv4/route/flush", {"open O_WRONLY"}},
        {"/proc/stp_ctrl", {"open O_RDWR"}},
        {"/proc/net/*", {"open O_RDONLY"}},
        {"/sys/class/net/*/bonding/slaves", {"open O_RDONLY"}},
        {"/sys/class/net/*/bonding/active_slave", {"open O_RDONLY"}},
        {"/sys/class/net/*/bonding/*", {"open O_RDWR|O_TRUNC"}},
        {"/sys/class/net/*/carrier", {"open O_RDONLY"}},
        {"/dev/pdcRtc", {"open O_RDWR", "open O_RDONLY|O_CLOEXEC"}},  // who only looks
        {"/mnt/mtd/RtcSramFile", {"open O_RDONLY|O_CLOEXEC"}},
        {"/dev/full", {"open O_WRONLY"}},  // a test of the log
        {"/dev/*", {"open O_RDWR"}},
        {"/tmp/telnet", {"open O_RDWR|O_CREAT 0700"}},
        {"*/resolv.conf", {"open O_RDONLY", "fopen w+"}},
        {"*/resolvip6.conf", {"open O_RDONLY", "fopen w+"}},
        {"*/udhcpd.conf", {"fopen w+"}},
        {"*/nettc_*", {"open O_WRONLY|O_APPEND", "fopen a", "fopen r", "fopen w+"}},
        {"*",  // a setting file: locked, read, created empty, scanned, rewritten
         {"open O_WRONLY|O_APPEND", "open O_RDONLY", "open O_RDWR|O_CREAT 0644", "fopen r+",
          "fopen w+"}},
    };
    return kRules;
}

const std::vector<std::string>& Sockets()
{
    static const std::vector<std::string> kSockets = {
        "AF_INET SOCK_DGRAM 0", "AF_INET6 SOCK_DGRAM 0", "AF_NETLINK SOCK_RAW 0",
        "AF_INET SOCK_RAW *", "AF_INET SOCK_PACKET *"};
    return kSockets;
}

bool Fits(const std::string& text, const std::string& pattern)
{
    return fnmatch(pattern.c_str(), text.c_str(), 0) == 0;
}

bool IsStatedSocket(const std::string& socket)
{
    return std::any_of(Sockets().begin(), Sockets().end(),
                       [&](const std::string& stated) { return Fits(socket, stated); });
}

bool IsStatedFile(const std::string& path, const std::string& way)
{
    const auto rule = std::find_if(Rules().begin(), Rules().end(),
                                   [&](const Rule& each) { return Fits(path, each.path); });
    return std::find(rule->ways.begin(), rule->ways.end(), way) != rule->ways.end();
}

}  // namespace

void ExpectStated(const std::string& call, const std::string& more)
{
    const size_t begin = call.find(' ') + 1;
    const std::string verb = call.substr(0, begin);
    if (verb == "socket ") {
        EXPECT_TRUE(IsStatedSocket(call.substr(begin) + more)) << call << more;
        return;
    }
    if (verb != "open " && verb != "fopen ") return;

    const size_t end = call.rfind(' ');
    EXPECT_TRUE(IsStatedFile(call.substr(begin, end - begin), verb + call.substr(end + 1) + more))
        << call << more;
}

}  // namespace fake
