// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "LanriseWorld.h"

#include "Backup.h"
#include "Lanrise.h"
#include "Support/KeyFile.h"

#include <cstring>
#include <filesystem>
#include <sstream>

#include <arpa/inet.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fake {

namespace fs = std::filesystem;

namespace {

constexpr char kFolder[] = "/mnt/mtd/Config";

/// What a device's memories hold from one process to the next.
struct BackupBytes {
    uint8_t rtc[256];
    uint8_t sram[256];
    uint8_t cmos[256];
};

uint32_t Word(const std::string& address)
{
    in_addr value{};
    EXPECT_EQ(inet_pton(AF_INET, address.c_str(), &value), 1) << address;
    return value.s_addr;
}

std::string Text(uint32_t word)
{
    const in_addr value{word};
    char text[INET_ADDRSTRLEN];
    return inet_ntop(AF_INET, &value, text, sizeof(text));
}

bool IsWellFormedLine(const std::string& file, const std::string& line)
{
    if (file.rfind("nettc_", 0) == 0) return line.rfind("dev ", 0) == 0 && line.back() == ',';
    if (file.rfind("resolv", 0) == 0) return line.rfind("nameserver ", 0) == 0 && line.size() > 11;

    const size_t equals = line.find(" = ");
    if (equals == std::string::npos) return false;
    if (file == "poeMode.conf") return true;                       // a card's name is the key
    if (line.rfind("SSIF_EDGE[", 0) == 0) return line[11] == ']';  // and a bridge's letter
    for (int key = 0; key < HOST_NET_END; ++key) {
        if (line.substr(0, equals) == vorlix::KeyText(static_cast<KEYENUM>(key))) return true;
    }
    return false;
}

}  // namespace

bool Lanrise(const std::vector<std::string>& words)
{
    std::vector<std::string> texts = {"lanrise"};
    texts.insert(texts.end(), words.begin(), words.end());
    std::vector<char*> arguments;
    for (std::string& text : texts) arguments.push_back(text.data());
    arguments.push_back(nullptr);
    return CommonMain(static_cast<int32_t>(texts.size()), arguments.data());
}

void List(const std::vector<std::string>& cards)
{
    for (const std::string& card : cards) kernel.Add(card);
    Lanrise({"list"});  // a form that is none: nothing but the common start
    ClearLog();
    ClearTrace();
}

void InNewProcess(const std::function<void()>& run)
{
    auto* kept = static_cast<BackupBytes*>(mmap(
        nullptr, sizeof(BackupBytes), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    ASSERT_NE(kept, MAP_FAILED);
    const auto keep = [kept] {
        memcpy(kept->rtc, kernel.rtc.bytes, sizeof(kept->rtc));
        memcpy(kept->sram, kernel.sram.bytes, sizeof(kept->sram));
        memcpy(kept->cmos, cmos.bytes, sizeof(kept->cmos));
    };
    keep();
    fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        run();
        keep();
        fflush(nullptr);
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
    memcpy(kernel.rtc.bytes, kept->rtc, sizeof(kept->rtc));
    memcpy(kernel.sram.bytes, kept->sram, sizeof(kept->sram));
    memcpy(cmos.bytes, kept->cmos, sizeof(kept->cmos));
    munmap(kept, sizeof(BackupBytes));
}

std::map<std::string, std::string> SavedFiles()
{
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::directory_iterator(Mapped(kFolder))) {
        const std::string name = entry.path().filename();
        files[name] = Get(std::string(kFolder) + "/" + name);
    }
    return files;
}

std::vector<std::string> FileWrites()
{
    std::vector<std::string> writes;
    for (const std::string& call : TraceOf({"fopen /mnt/mtd/Config"})) {
        if (call.substr(call.size() - 2) == "w+") writes.push_back(call);
    }
    return writes;
}

void ExpectWellFormedFiles()
{
    for (const auto& [name, text] : SavedFiles()) {
        EXPECT_TRUE(text.empty() || text.back() == '\n') << name << ":\n" << text;
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);) {
            EXPECT_TRUE(IsWellFormedLine(name, line)) << name << ": " << line;
        }
    }
}

void SetBondMembers(const std::string& bond, const std::string& line)
{
    Put("/sys/class/net/" + bond + "/bonding/slaves", line);
}

void SetBridgePorts(const std::string& bridge, const std::vector<std::string>& ports)
{
    const std::string folder = "/sys/class/net/" + bridge;
    MakeFolder(folder + "/brif");
    Put(folder + "/carrier", "1\n");
    for (const std::string& port : ports) Put(folder + "/brif/" + port, "");
}

void UseRtc(const std::string& address, const std::string& mask, const std::string& gateway)
{
    Put("/dev/pdcRtc", "");
    const uint32_t values[] = {Word(address), Word(mask), Word(gateway)};
    const uint32_t sum = CRCCalcu(values, sizeof(values));
    memcpy(kernel.rtc.bytes + RTC_SRAM_ETHCRC, &sum, sizeof(sum));
    memcpy(kernel.rtc.bytes + RTC_SRAM_ETHIP, values, sizeof(values));
}

std::string RtcBlock()
{
    uint32_t sum = 0;
    uint32_t values[3] = {};
    memcpy(&sum, kernel.rtc.bytes + RTC_SRAM_ETHCRC, sizeof(sum));
    memcpy(values, kernel.rtc.bytes + RTC_SRAM_ETHIP, sizeof(values));
    if (sum != CRCCalcu(values, sizeof(values))) return "bad check sum";
    return Text(values[0]) + " " + Text(values[1]) + " " + Text(values[2]);
}

void UseCmos(const std::string& address, uint8_t maskBits, const std::string& gateway)
{
    CmosData record{};
    record.uiIP = Word(address);
    record.uiGateway = Word(gateway);
    record.NetMask = maskBits;
    record.Flag = 0xA;
    record.reserved[0] = crc8(reinterpret_cast<unsigned char*>(&record), 9);
    memcpy(cmos.bytes + cmos.networkStart, &record, sizeof(record));
}

uint8_t& CmosFlagByte()
{
    return cmos.bytes[cmos.networkStart + 9];
}

std::string CmosRecord()
{
    CmosData record{};
    memcpy(&record, cmos.bytes + cmos.networkStart, sizeof(record));
    if (record.reserved[0] != crc8(cmos.bytes + cmos.networkStart, 9)) return "bad check byte";

    std::ostringstream text;
    text << Text(record.uiIP) << "/" << int{record.NetMask} << " " << Text(record.uiGateway)
         << " flag " << int{record.Flag} << " mark " << int{record.reserved[1]};
    return text.str();
}

}  // namespace fake
