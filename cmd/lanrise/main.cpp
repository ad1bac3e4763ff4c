// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Lanrise.h"

#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace {

/// A start script may close the standard streams. The next file opened would take their places, and
/// the log would land in a setting file. Without /dev/null the root stands there: nothing can be
/// written to it.
void FillStandardStreams()
{
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        if (fcntl(stream, F_GETFD) >= 0) continue;
        if (open("/dev/null", O_RDWR) < 0) (void)open("/", O_PATH);
    }
}

void Survive(int /*signal*/) {}

/// A log that nobody reads, or that may not grow, must not end a boot. This is a handler because
/// the tools get the default back with it: what is ignored here would be ignored by them.
void OutliveTheLog(int signal)
{
    struct sigaction action {};
    if (sigaction(signal, nullptr, &action) != 0 || action.sa_handler != SIG_DFL) return;

    action.sa_handler = Survive;
    action.sa_flags = SA_RESTART;
    (void)sigaction(signal, &action, nullptr);
}

/// Children of a process that ignores their end cannot be waited for, and a tool that cannot be
/// waited for counts as failed: no bridge would be built. Whoever starts this may ignore it.
void WaitForTools()
{
    struct sigaction action {};
    if (sigaction(SIGCHLD, nullptr, &action) != 0 || action.sa_handler != SIG_IGN) return;

    action.sa_handler = SIG_DFL;
    (void)sigaction(SIGCHLD, &action, nullptr);
}

}  // namespace

int main(int argc, char** argv)
{
    FillStandardStreams();
    OutliveTheLog(SIGPIPE);
    OutliveTheLog(SIGXFSZ);
    WaitForTools();
    return CommonMain(argc, argv) ? 0 : -1;
}
