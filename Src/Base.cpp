// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// Chapters, of the helpers and then of the operations alike: names - control sockets - what a card
// is - listings - presence - link - shell.

#include "Base.h"

#include "Support/Handles.h"
#include "Support/KeyFile.h"
#include "Support/Log.h"
#include "Support/Sockets.h"
#include "Support/Text.h"

#include <algorithm>
#include <atomic>
#include <cctype>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <linux/ethtool.h>
#include <linux/sockios.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vorlix {

pthread_mutex_t upDownLock = PTHREAD_MUTEX_INITIALIZER;

namespace {

// ---- texts and limits

constexpr char kInterfaceTable[] = "/proc/net/dev";
constexpr char kWirelessTable[] = "/proc/net/wireless";
constexpr char kPoeMark[] = ":poe";

constexpr const char* kRefusedKinds[] = {"veth", "br-", "docker"};
constexpr const char* kAcceptedKinds[] = {"eth", "wlan", "bond", "br", "ppp", "lte", "apra", "usb"};
constexpr const char* kNeverSwitches[] = {"ppp", "lte", "bond", "wlan"};

// What a card is to the switch.
constexpr int32_t kOrdinaryCard = 0;
constexpr int32_t kSwitchInterface = 1;
constexpr int32_t kCardAndSwitch = 2;

constexpr int kJoinedSize = 255;
constexpr int kCounterTokens = 17;
constexpr int kTokenSize = 32;
constexpr int kCommandNotFound = 127;
constexpr unsigned kAllFlags = 0xffff;
constexpr unsigned kAllButUp = 0xfffe;

using Name = char[kNameSize];
using Names = char (*)[kNameSize];

constexpr size_t kNamesSize = sizeof(Name) * kMaxInterfaces;

// ---- state

KeptSocket commonSocketfd{AF_INET};
KeptSocket commonSocketfdv6{AF_INET6};

/// A name found once and kept. Filled and compared under its own lock, which is held over no call.
class NameCache {
public:
    constexpr NameCache() = default;

    bool Empty()
    {
        const MutexGuard guard(lock_);
        return name_[0] == '\0';
    }

    bool Holds(const char* name)
    {
        const MutexGuard guard(lock_);
        return name_[0] != '\0' && strncmp(name_, name, sizeof(name_)) == 0;
    }

    void Keep(const char* name)
    {
        const MutexGuard guard(lock_);
        CopyText(name_, name);
    }

    void CopyTo(char* name, size_t size)
    {
        const MutexGuard guard(lock_);
        CopyText(name, size, name_);
    }

private:
    pthread_mutex_t lock_ = PTHREAD_MUTEX_INITIALIZER;
    Name name_ = {};
};

// ---- names

template <size_t count>
bool ContainsAny(const char* text, const char* const (&parts)[count])
{
    for (const char* part : parts) {
        if (Contains(text, part)) return true;
    }
    return false;
}

bool IsDeviceKind(const char* name)
{
    return !ContainsAny(name, kRefusedKinds) && ContainsAny(name, kAcceptedKinds);
}

// ---- control sockets

/// The descriptor of a shared socket. One that cannot be opened is told.
int ControlOf(KeptSocket& shared, const char* operation)
{
    const int control = shared.Get();
    if (control < 0) LOG_ERROR_AS(operation, "open commonSocketfd error.[%s]", strerror(errno));
    return control;
}

bool Request(int control, int cmd, void* record)
{
    return ioctl(control, static_cast<unsigned>(cmd), record) >= 0;
}

// ---- wireless cards

/// Reads the status behind the line's first colon: 1 says connected.
bool ReadConnection(const char* line)
{
    const char* colon = strchr(line, ':');
    if (colon == nullptr) {
        LOG_ERROR_AS("NetCardIsWifi", "can not find ':' in %s", line);
        return false;
    }
    int status = 0;
    (void)sscanf(colon + 1, "%d", &status);  // what cannot be read is 0
    return status == 1;
}

/// `NetCardIsWifi` on the table of a walk.
bool AskWifi(const char* name, bool* isConnect, WirelessTable& table)
{
    static NameCache wifiname;

    if (isConnect == nullptr && wifiname.Holds(name)) return true;

    char line[kLineSize];
    if (!table.FindLine(name, line)) {
        if (!StartsWith(name, "wlan")) return false;
        if (isConnect != nullptr) *isConnect = false;
        return true;
    }
    wifiname.Keep(name);
    if (isConnect != nullptr) *isConnect = ReadConnection(line);
    return true;
}

// ---- switch interfaces

/// What a card is for which no mode is saved.
int32_t DriverMode(const char* name)
{
    if (!IsSwitch(name)) return kOrdinaryCard;
    return Equal(name, kFirstCard) ? kCardAndSwitch : kSwitchInterface;
}

/// The first answer of `GetSwitchInterface`. Byte 15 of a full buffer is left to the caller, who
/// has zeroed it.
void HandOut(const char* found, char* name, int len)
{
    Name text;
    CopyText(text, found);
    if (len < kNameSize) {
        CopyText(name, static_cast<size_t>(len), text);
    } else {
        memcpy(name, text, sizeof(text) - 1);
    }
}

void FormPoeName(Name& entry, const char* card)
{
    entry[0] = '\0';
    Strcat(entry, sizeof(entry), card, nullptr);
    Strcat(entry, sizeof(entry), kPoeMark, nullptr);
}

// ---- listings

bool WantsNone(const int* maxNum)
{
    return maxNum == nullptr || *maxNum == 0;
}

/// /proc/net/dev, walked over its lines with a colon: the others are its titles.
class InterfaceTable {
public:
    bool Next(char (&line)[kLineSize])
    {
        while (file_.Lines().Next(line)) {
            if (strchr(line, ':') != nullptr) return true;
        }
        return false;
    }

    /// Tells of a table that could not be opened.
    bool CheckOpen(const char* operation) const
    {
        if (file_.Ok()) return true;

        LOG_ERROR_AS(operation, "Open file %s failed!\n", kInterfaceTable);
        return false;
    }

    /// Tells of a walk that an error cut off. A card that is not listed counts as gone, and a boot
    /// then gives up the bonds and bridges that it was in: better no list than a part of one. A
    /// list that was full before has lost nothing.
    bool CheckWhole(const char* operation) const
    {
        if (!file_.Lines().Failed()) return true;

        LOG_ERROR_AS(operation, "Read file %s failed!\n", kInterfaceTable);
        return false;
    }

    bool Ok() const { return file_.Ok(); }
    void LeaveOpen() { file_.LeaveOpen(); }

private:
    LineFile file_{kInterfaceTable};
};

/// Capacity of a listing: the arrays have 32 entries, whatever their caller says.
int CapacityOf(int maxNum)
{
    return std::min(maxNum, kMaxInterfaces);
}

/// True for a card that is a switch interface as well.
bool IsCardAndSwitch(const char* name, CardWalk& walk)
{
    return !walk.IsWifi(name) && walk.SwitchMode(name) == kCardAndSwitch;
}

bool ListKind(const char* operation, const char* part, Names names, int* maxNum)
{
    if (names == nullptr || WantsNone(maxNum)) {
        LOG_ERROR_AS(operation, "params error!");
        return false;
    }
    char kind[kNameSize];
    CopyText(kind, part);
    return GetSpecifiedInterfaceInfo(kind, names, maxNum);
}

// ---- counters

void StoreCounter(NetDataStat* stat, int token, uint64_t value)
{
    const auto low = static_cast<uint32_t>(value);
    switch (token) {
    case 1: stat->receivedBytes = value; break;
    case 2: stat->receivedPackets = value; break;
    case 3: stat->receivedErrors = low; break;
    case 4: stat->receivedDroped = low; break;
    case 5: stat->receivedOverruns = low; break;
    case 6: stat->receivedFrame = low; break;
    case 9: stat->transmittedBytes = value; break;
    case 10: stat->transmittedPackets = value; break;
    case 11: stat->transmittedErrors = low; break;
    case 12: stat->transmittedDroped = low; break;
    case 13: stat->transmittedOverruns = low; break;
    case 14: stat->transmittedCollisions = low; break;
    case 15: stat->transmittedCarrier = low; break;
    default: break;  // the name, and the columns that nobody asks for
    }
}

bool IsSpace(char character)
{
    return isspace(static_cast<unsigned char>(character)) != 0;
}

void StoreCounters(NetDataStat* stat, const char* line)
{
    for (int token = 0; token < kCounterTokens; ++token) {
        while (IsSpace(*line)) ++line;
        if (*line == '\0') break;

        char text[kTokenSize] = {};
        size_t length = 0;
        for (; *line != '\0' && !IsSpace(*line); ++line) {
            if (length < sizeof(text) - 1) text[length++] = *line;
        }
        StoreCounter(stat, token, strtoull(text, nullptr, 10));
    }
    stat->transmittedTxqueuelens = 0;
    stat->interfaceSpeed = 0;
}

// ---- presence

void JoinNames(Names names, int count, char (&joined)[kJoinedSize])
{
    joined[0] = '\0';
    size_t length = 0;
    for (int i = 0; i < count; ++i) {
        length += JoinTexts(joined + length, sizeof(joined) - length, {names[i], ","});
    }
}

/// Copies the part of an entry before its colon. False when it is too long for an interface.
bool CutBaseName(const char* entry, Name& name)
{
    const char* colon = strchr(entry, ':');
    if (colon == nullptr) {
        CopyText(name, entry);
        return true;
    }
    const auto length = static_cast<size_t>(colon - entry);
    if (length > sizeof(name) - 1) return false;

    CopyText(name, length + 1, entry);
    return true;
}

/// Looks for the interface of an entry in the list. A bridge passes: it may be about to be made.
bool CheckListed(const char* entry, char (&list)[kJoinedSize])
{
    constexpr char kCheck[] = "CheckEthExist";
    Name name;
    if (!CutBaseName(entry, name)) {
        LOG_ERROR_AS(kCheck, "eth %s name error, strlen larger than %lu!", entry,
                     static_cast<unsigned long>(kNameSize));
        return false;
    }
    if (StartsWith(name, "br") || FindWordInLine(list, name, ',') != nullptr) return true;

    LOG_ERROR_AS(kCheck, "can not find %s in %s.", entry, list);
    return false;
}

// ---- link

bool ChangeFlags(const char* operation, const char* name, const char* verb, unsigned set,
                 unsigned keep)
{
    if (name == nullptr) return false;

    ifreq request = RequestFor(name);
    if (!NetIOCtrl(SIOCGIFFLAGS, &request)) {
        LOG_ERROR_AS(operation, "%s %s failed,getflags error.", verb, name);
        return false;
    }
    const auto flags = static_cast<unsigned short>(request.ifr_flags);
    request.ifr_flags = static_cast<short>((flags & keep) | set);
    if (NetIOCtrl(SIOCSIFFLAGS, &request)) return true;

    LOG_ERROR_AS(operation, "%s %s failed,setflags error.", verb, name);
    return false;
}

// ---- shell

/// A command text, cut to what a command may take.
struct Command {
    char text[256];

    __attribute__((format(printf, 2, 0))) Command(const char* format, va_list arguments)
    {
        vsnprintf(text, sizeof(text), format, arguments);
    }
};

/// The signal state that a run changes.
struct SavedSignals {
    struct sigaction interrupt;
    struct sigaction quit;
    sigset_t mask;
};

/// Setting and restoring a signal tell of a failure in the same words.
bool SetAction(int signal, const char* signalName, const struct sigaction* action,
               struct sigaction* old)
{
    if (sigaction(signal, action, old) >= 0) return true;

    LOG_ERROR_AS("VorlixRunCmd", "sigaction(%s, &ignore, &saveintr) failed.\n", signalName);
    return false;
}

/// A failure leaves what was changed before it: nothing is restored here.
bool QuietSignals(SavedSignals* saved)
{
    struct sigaction ignore {};
    ignore.sa_handler = SIG_IGN;
    sigemptyset(&ignore.sa_mask);
    ignore.sa_flags = 0;
    if (!SetAction(SIGINT, "SIGINT", &ignore, &saved->interrupt)) return false;
    if (!SetAction(SIGQUIT, "SIGQUIT", &ignore, &saved->quit)) return false;

    sigset_t child;
    sigemptyset(&child);
    sigaddset(&child, SIGCHLD);
    if (sigprocmask(SIG_BLOCK, &child, &saved->mask) < 0) {
        LOG_ERROR_AS("VorlixRunCmd", "sigprocmask(SIG_BLOCK, &ignore, &saveintr) failed.\n");
        return false;
    }
    return true;
}

bool RestoreSignals(const SavedSignals& saved)
{
    if (!SetAction(SIGINT, "SIGINT", &saved.interrupt, nullptr)) return false;
    if (!SetAction(SIGQUIT, "SIGQUIT", &saved.quit, nullptr)) return false;
    if (sigprocmask(SIG_SETMASK, &saved.mask, nullptr) < 0) {
        LOG_ERROR_AS("VorlixRunCmd", "sigprocmask  failed.\n");
        return false;
    }
    return true;
}

/// The way of the child to the shell. It runs in the memory of its parent, who waits: it makes
/// these calls and no others, and does not return.
[[noreturn]] void BecomeShell(const SavedSignals& saved, const char* command)
{
    if (sigaction(SIGINT, &saved.interrupt, nullptr) < 0) {
        LOG_WARN_AS("VorlixRunCmd", "sigaction(SIGINT, &saveintr, NULL) failed");
    }
    if (sigaction(SIGQUIT, &saved.quit, nullptr) < 0) {
        LOG_WARN_AS("VorlixRunCmd", "sigaction(SIGQUIT, &savequit, NULL) failed");
    }
    (void)sigprocmask(SIG_SETMASK, &saved.mask, nullptr);
    execlp("sh", "sh", "-c", command, static_cast<char*>(nullptr));
    _exit(kCommandNotFound);
}

/// Waits for the shell and gives its status, -1 when it cannot be waited for.
int WaitFor(pid_t shell)
{
    int status = -1;
    while (waitpid(shell, &status, 0) < 0) {
        if (errno == EINTR) continue;

        const int reason = errno;
        LOG_ERROR_AS("VorlixRunCmd", "waitpid failed, errno: %d, %s\n", reason, strerror(reason));
        return -1;
    }
    return status;
}

}  // namespace

ifreq RequestFor(const char* name)
{
    ifreq request{};
    CopyText(request.ifr_name, name);
    return request;
}

ifreq DriverRequestFor(const char* name, void* record)
{
    ifreq request = RequestFor(name);
    request.ifr_data = static_cast<char*>(record);
    return request;
}

bool RunCommand(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const Command command(format, arguments);
    va_end(arguments);
    return VorlixRunCmd(command.text);
}

bool RunLogged(const char* operation, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const Command command(format, arguments);
    va_end(arguments);
    LOG_INFO_AS(operation, "%s\n", command.text);
    return VorlixRunCmd(command.text);
}

bool WirelessTable::FindLine(const char* name, char (&line)[kLineSize])
{
    if (!table_) table_.emplace(kWirelessTable);
    if (!table_->Ok()) return false;

    LineReader& lines = table_->Lines();
    lines.Rewind();
    while (lines.Next(line)) {
        const char* found = strstr(line, name);
        if (found != nullptr && !IsDigit(found[strlen(name)])) return true;
    }
    return false;
}

bool CardWalk::IsWifi(const char* name)
{
    return AskWifi(name, nullptr, wireless_);
}

int32_t CardWalk::SwitchMode(const char* name)
{
    if (Contains(name, kPoeMark)) return kSwitchInterface;

    int32_t mode = kOrdinaryCard;
    const bool isSaved = modes_.Get(name, &mode) == 0;
    return isSaved ? mode : DriverMode(name);
}

bool ListCards(char (*names)[kNameSize], int* maxNum, CardWalk& walk)
{
    constexpr char kListing[] = "GetAllInterfaceInfo";
    if (names == nullptr || WantsNone(maxNum)) {
        LOG_ERROR_AS(kListing, "params error!");
        return false;
    }
    memset(names, 0, kNamesSize);
    InterfaceTable table;
    if (!table.CheckOpen(kListing)) return false;

    const int capacity = CapacityOf(*maxNum);
    char line[kLineSize];
    int count = 0;
    while (count < capacity && table.Next(line)) {
        if (!getNetIfName(line, names[count], kNameSize)) continue;

        const char* name = names[count];
        ++count;
        if (!IsCardAndSwitch(name, walk)) continue;
        if (count > capacity) {
            LOG_ERROR_AS(kListing, "netdevice's count is more than gived buf");
            table.LeaveOpen();  // on this way out
            return false;
        }
        if (count < kMaxInterfaces) FormPoeName(names[count], name);
        ++count;
    }
    if (!table.CheckWhole(kListing)) return false;

    *maxNum = std::min(count, capacity);
    return true;
}

}  // namespace vorlix

using namespace vorlix;

bool getNetIfNameNoFilter(const char* line, char* name, int len)
{
    if (line == nullptr || name == nullptr || len <= 0) return false;

    const char* from = line;
    while (*from == ' ' || *from == '\t') ++from;
    int length = 0;
    for (; *from != ':' && *from != ' '; ++from) {
        // A NUL can only come when the caller has not looked for the colon.
        if (length == len || *from == '\t' || *from == '\0') return false;
        name[length++] = *from;
    }
    if (*from != ':') return false;
    if (length == len) {
        LOG_ERROR("eth name too long. %s", line);
        return false;
    }
    name[length] = '\0';
    return true;
}

bool getNetIfName(const char* line, char* name, int len)
{
    return getNetIfNameNoFilter(line, name, len) && IsDeviceKind(name);
}

char* FindWordInLine(char* line, const char* word, const char ts)
{
    if (line == nullptr || word == nullptr || word[0] == '\0') return nullptr;

    const size_t length = strlen(word);
    for (char* found = strstr(line, word); found != nullptr; found = strstr(found + length, word)) {
        const char behind = found[length];
        const bool begins = found == line || found[-1] == ts;
        if (begins && (behind == '\0' || behind == ts || behind == '\n')) return found;
    }
    LOG_INFO("can not find %s in %s", word, line);
    return nullptr;
}

bool NetIOCtrl(int cmd, void* ifr)
{
    if (ifr == nullptr) return false;

    const int control = ControlOf(commonSocketfd, __func__);
    if (control < 0) return false;
    if (Request(control, cmd, ifr)) return true;

    LOG_ERROR("cmd %d error.[%s] %.16s ", cmd, strerror(errno), static_cast<const char*>(ifr));
    return false;
}

bool NetIOCtrlv6(int cmd, void* ifr)
{
    if (ifr == nullptr) return false;

    const int control = ControlOf(commonSocketfdv6, __func__);
    if (control < 0) return false;
    if (Request(control, cmd, ifr)) return true;

    LOG_ERROR("cmd %d error.[%s]", cmd, strerror(errno));
    return false;
}

bool CheckNetCardByDrvName(const char* name, const char* drvname)
{
    ethtool_drvinfo driver{};
    driver.cmd = ETHTOOL_GDRVINFO;
    MutexGuard guard(upDownLock);
    ifreq request = DriverRequestFor(name, &driver);
    const bool isAnswered = NetIOCtrl(SIOCETHTOOL, &request);
    guard.Release();
    char text[sizeof(driver.driver) + 1];  // a driver may fill its field to the last byte
    CopyText(text, driver.driver);
    return isAnswered && Contains(text, drvname);
}

bool InterfaceIpIsExist(const char* name)
{
    if (name == nullptr) return false;

    const Fd control(OpenSocket(AF_INET, SOCK_DGRAM, 0));
    if (!control.Ok()) {
        perror("socket failed");
        return false;
    }
    ifreq request = RequestFor(name);
    return ioctl(control.Get(), SIOCGIFADDR, &request) >= 0;
}

bool IsVirtPcie(const char* name)
{
    static std::atomic<bool> doit{false};
    static std::atomic<bool> result{false};

    if (name == nullptr || !Contains(name, "vnic")) return false;
    if (doit.load(std::memory_order_acquire)) return result.load(std::memory_order_relaxed);

    const bool answer = CheckNetCardByDrvName(name, "pcit virt nic");
    result.store(answer, std::memory_order_relaxed);
    doit.store(true, std::memory_order_release);
    return answer;
}

bool IsSwitch(const char* name)
{
    static NameCache switchName;

    if (name == nullptr || ContainsAny(name, kNeverSwitches)) return false;
    if (Equal(name, "eth0:poe")) return true;
    if (!switchName.Empty()) return switchName.Holds(name);
    if (!CheckNetCardByDrvName(name, "Switch")) return false;

    switchName.Keep(name);
    return true;
}

int32_t isSwitchByName(const char* name)
{
    if (name == nullptr) return -1;
    if (Contains(name, kPoeMark)) return kSwitchInterface;

    int32_t mode = kOrdinaryCard;
    const bool isSaved = NetSwitch_GetNetCardMode(name, &mode) == 0;
    return isSaved ? mode : DriverMode(name);  // what is saved goes before what the driver says
}

bool GetSpecifiedInterfaceInfo(char* specName, char (*names)[16], int* maxNum)
{
    if (specName == nullptr || names == nullptr || WantsNone(maxNum)) {
        LOG_ERROR("params error!");
        return false;
    }
    memset(names, 0, kNamesSize);
    InterfaceTable table;
    if (!table.Ok()) {
        LOG_ERROR("Open file %s failed!", kInterfaceTable);
        return false;
    }
    const int capacity = CapacityOf(*maxNum);
    char line[kLineSize];
    int count = 0;
    while (count < capacity && table.Next(line)) {
        const bool isNamed = getNetIfNameNoFilter(line, names[count], kNameSize);
        if (isNamed && Contains(names[count], specName)) ++count;
    }
    if (!table.CheckWhole(__func__) || count < 1) return false;

    *maxNum = count;
    return true;
}

bool GetBridgeInterfaceInfo(char (*names)[16], int* maxNum)
{
    return ListKind(__func__, "br", names, maxNum);
}

bool GetNbpInterfaceInfo(char (*names)[16], int* maxNum)
{
    return ListKind(__func__, "nbp", names, maxNum);
}

bool GetVnicInterfaceInfo(char (*names)[16], int* maxNum)
{
    return ListKind(__func__, "vnic", names, maxNum);
}

bool GetNormalInterfaceInfo(struct InterfaceInfo* interfaceInfo, int* maxNum)
{
    if (WantsNone(maxNum)) {
        LOG_ERROR("params error!");
        return false;
    }
    InterfaceTable table;
    if (!table.CheckOpen(__func__)) return false;

    char line[kLineSize];
    int count = 0;
    while (count < *maxNum && table.Next(line)) {
        if (interfaceInfo == nullptr) return false;  // none are missed as long as no card is met

        InterfaceInfo& entry = interfaceInfo[count];
        if (!getNetIfName(line, entry.name, sizeof(entry.name))) continue;

        StoreCounters(&entry.netDatastat, line);
        ++count;
    }
    if (!table.CheckWhole(__func__)) return false;

    if (count < *maxNum) *maxNum = count;
    return true;
}

bool GetAllInterfaceInfo(char (*names)[16], int* maxNum)
{
    CardWalk walk;
    return ListCards(names, maxNum, walk);
}

bool GetSwitchInterface(char* name, int len)
{
    static NameCache switchname;

    if (name == nullptr || len < 1) {
        LOG_ERROR("params error!");
        return false;
    }
    if (!switchname.Empty()) {
        switchname.CopyTo(name, static_cast<size_t>(len));
        return true;
    }
    char names[kMaxInterfaces][kNameSize];
    int count = kMaxInterfaces;
    CardWalk walk;
    if (!ListCards(names, &count, walk)) {
        LOG_WARN("GetAllInterfaceInfo failed!");
        return false;
    }
    for (int i = 0; i < count; ++i) {
        if (walk.SwitchMode(names[i]) != kSwitchInterface) continue;

        switchname.Keep(names[i]);
        HandOut(names[i], name, len);
        return true;
    }
    LOG_INFO("can no find switch.");
    return false;
}

bool CheckEthExist(const char** ethList, int num)
{
    if (ethList == nullptr || ethList[0] == nullptr) return false;

    char names[kMaxInterfaces][kNameSize];
    int count = kMaxInterfaces;
    const bool isListed = Contains(ethList[0], "nbp") ? GetNbpInterfaceInfo(names, &count)
                                                      : GetAllInterfaceInfo(names, &count);
    if (!isListed) return false;

    char joined[kJoinedSize];
    JoinNames(names, count, joined);
    for (const char* entry : NameList(ethList, num)) {
        if (entry == nullptr || !CheckListed(entry, joined)) return false;
    }
    return true;
}

bool NetCardIsWifi(const char* name, bool* isConnect)
{
    if (name == nullptr) return false;

    WirelessTable table;
    return AskWifi(name, isConnect, table);
}

bool InterfaceIsLink(const char* name)
{
    if (name == nullptr) return false;

    const Fd control(OpenSocket(AF_INET, SOCK_DGRAM, 0));
    if (!control.Ok()) {
        LOG_ERROR("socket %s failed.", name);
        return false;
    }
    ethtool_value link{ETHTOOL_GLINK, 0};
    ifreq request = DriverRequestFor(name, &link);
    if (ioctl(control.Get(), SIOCETHTOOL, &request) < 0) LOG_ERROR("ioctl %s failed,.", name);
    return link.data != 0;
}

bool InterfaceUp(const char* name)
{
    return ChangeFlags(__func__, name, "up", IFF_UP, kAllFlags);
}

bool InterfaceDown(const char* name)
{
    return ChangeFlags(__func__, name, "down", 0, kAllButUp);
}

bool VorlixRunCmd(const char* command)
{
    if (command == nullptr) {
        LOG_ERROR("command buffer is NULL.\n");
        return false;
    }
    SavedSignals saved{};
    if (!QuietSignals(&saved)) return false;

    int status = -1;
    const pid_t shell = vfork();  // NOLINT(clang-analyzer-security.insecureAPI.vfork)
    if (shell == 0) BecomeShell(saved, command);  // NOLINT(clang-analyzer-unix.Vfork)
    if (shell < 0) {
        LOG_ERROR("vfork failed, ret = %d.\n", shell);
    } else {
        status = WaitFor(shell);
    }
    return RestoreSignals(saved) && status >= 0;
}
