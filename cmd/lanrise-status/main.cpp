// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// lanrise-status: what the kernel, the setting files and the backup memory say about each
// interface, side by side. It changes nothing.

#include "Print.h"
#include "Read.h"
#include "Support/KeyFile.h"
#include "Support/Text.h"

#include <cstdlib>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

using namespace vorlix;

namespace status {

namespace {

constexpr int kAgree = 0;
constexpr int kDiffer = 1;
constexpr int kCannotLook = 2;

constexpr int kUsualColumns = 80;
constexpr int kLeastColumns = 40;

constexpr char kUsage[] =
    "usage: lanrise-status               a table of all interfaces\n"
    "       lanrise-status <interface>   all about one of them\n"
    "       lanrise-status --json        the same as one JSON document\n"
    "       lanrise-status --check       one line for each difference between kernel, setting "
    "files\n"
    "                                    and backup memory, and each repair of the next boot;\n"
    "                                    exit status 0: none, 1: some, 2: it could not look\n"
    "       lanrise-status --help        this text\n"
    "       lanrise-status --version     its version\n"
    "It looks and changes nothing.\n";

enum class Face { Table, Card, Json, Check, Help, Version, Wrong };

struct Word {
    const char* text;
    Face face;
};

constexpr Word kWords[] = {{"--json", Face::Json},
                           {"--check", Face::Check},
                           {"--help", Face::Help},
                           {"--version", Face::Version}};

Face FaceOf(int argc, char** argv)
{
    if (argc < 2) return Face::Table;
    if (argc > 2) return Face::Wrong;

    for (const Word& word : kWords) {
        if (Equal(argv[1], word.text)) return word.face;
    }
    return argv[1][0] == '-' || argv[1][0] == '\0' ? Face::Wrong : Face::Card;
}

Screen ScreenOf(FILE* out)
{
    Screen screen = {out, kUsualColumns, false};
    winsize size{};
    if (isatty(STDOUT_FILENO) == 0) return screen;

    if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) {
        screen.columns = size.ws_col < kLeastColumns ? kLeastColumns : size.ws_col;
    }
    const char* none = getenv("NO_COLOR");
    screen.hasColour = none == nullptr || none[0] == '\0';
    return screen;
}

/// @return false when a reader has not got all of it
bool IsDelivered()
{
    return fflush(stdout) == 0 && ferror(stdout) == 0;
}

int Complain(const char* reason)
{
    (void)fprintf(stderr, "lanrise-status: %s\n", reason);
    return kCannotLook;
}

int ShowCard(const Report& report, const char* name)
{
    const Interface* entry = Find(report.device, name);
    if (entry == nullptr) {
        char text[kFindingSize];
        FormatText(text, sizeof(text), "no interface and no setting file: %s", Shown(name).text);
        return Complain(text);
    }
    PrintCard(report, *entry, ScreenOf(stdout));
    return kAgree;
}

int Check(const Report& report)
{
    PrintCheck(report, stdout);
    if (report.differences.count > 0 || report.repairs.count > 0) return kDiffer;
    if (IsWholeRead(report.device)) return kAgree;

    static Findings hidden;
    TellHidden(report.device, &hidden);
    for (int i = 0; i < hidden.count; ++i) {
        char text[kFindingSize];
        FormatText(text, sizeof(text), "%s%s%s", Shown(hidden.list[i].name).text,
                   hidden.list[i].name[0] == '\0' ? "" : ": ", hidden.list[i].text);
        (void)Complain(text);
    }
    return kCannotLook;
}

int Show(Face face, const char* name)
{
    static Findings differences;
    static Findings repairs;
    static Findings remarks;
    const char* failure = nullptr;
    const Device& device = Gather(&failure);
    if (failure != nullptr) return Complain(failure);

    Compare(device, &differences);
    Foretell(device, &repairs);
    Remark(device, &remarks);
    const Report report = {device, differences, repairs, remarks};
    switch (face) {
    case Face::Json: PrintJson(report, stdout); return kAgree;
    case Face::Check: return Check(report);
    case Face::Card: return ShowCard(report, name);
    default: PrintTable(report, ScreenOf(stdout)); return kAgree;
    }
}

int Run(int argc, char** argv)
{
    const Face face = FaceOf(argc, argv);
    switch (face) {
    case Face::Wrong: (void)fputs(kUsage, stderr); return kCannotLook;
    case Face::Help: (void)fputs(kUsage, stdout); return kAgree;
    case Face::Version: (void)puts("lanrise-status " VORLIX_STATUS_VERSION); return kAgree;
    default: return Show(face, argv[1]);
    }
}

}  // namespace

}  // namespace status

int main(int argc, char** argv)
{
    using namespace status;

    // A file opened here must not take the number of a stream that is closed.
    if (fcntl(STDOUT_FILENO, F_GETFD) < 0) return Complain("standard output is closed");

    LookOnly();
    const int result = Run(argc, argv);
    return IsDelivered() ? result : Complain("the output could not be written");
}
