// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The start of each test program. With VORLIX_FORK_EACH in the environment it runs its tests up to
// the first that fails, each in a child: modules keep state, and a child costs a tenth of a program
// that is started and linked anew. The variable may name a file with the tests to run, one a line.
// A library that wants to know which test has just ended gives a `TestHasEnded`.

#include "fake/Calls.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <set>
#include <string>

#include <dlfcn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Names = std::set<std::string>;

constexpr rlim_t kSecondsATest = 20;  // of the processor's time: an operation may never return

Names ReadNames(const char* path)
{
    Names names;
    std::ifstream file(path);
    for (std::string name; std::getline(file, name);) names.insert(name);
    return names;
}

bool Passes(const std::string& name)
{
    fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        const rlimit most{kSecondsATest, kSecondsATest};
        setrlimit(RLIMIT_CPU, &most);
        testing::GTEST_FLAG(filter) = name;
        _exit(RUN_ALL_TESTS());
    }
    const fake::OwnCalls waiting;
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) &&
           WEXITSTATUS(status) == 0;
}

int RunEachInAChild(const Names& wanted)
{
    const auto tell =
        reinterpret_cast<void (*)(const char* name)>(dlsym(RTLD_DEFAULT, "TestHasEnded"));
    const testing::UnitTest& all = *testing::UnitTest::GetInstance();
    for (int i = 0; i < all.total_test_suite_count(); ++i) {
        const testing::TestSuite& suite = *all.GetTestSuite(i);
        for (int j = 0; j < suite.total_test_count(); ++j) {
            const std::string name = std::string(suite.name()) + "." + suite.GetTestInfo(j)->name();
            if (!wanted.empty() && wanted.count(name) == 0) continue;
            if (!Passes(name)) {
                printf("FAILED %s\n", name.c_str());
                return 1;
            }
            if (tell != nullptr) tell(name.c_str());
        }
    }
    return 0;
}

/// A shell lets what it runs in the background ignore both signals. The tests look at the flags
/// too.
void BeInterruptible()
{
    const fake::OwnCalls starting;
    struct sigaction plain {};
    plain.sa_handler = SIG_DFL;
    for (const int signal : {SIGINT, SIGQUIT}) sigaction(signal, &plain, nullptr);
}

}  // namespace

/// Of a build that counts what is reached. At the very end the fake is gone already.
extern "C" __attribute__((weak)) void WriteCounts();

int main(int argc, char** argv)
{
    BeInterruptible();
    testing::InitGoogleTest(&argc, argv);
    const char* list = getenv("VORLIX_FORK_EACH");
    const int result = list == nullptr ? RUN_ALL_TESTS() : RunEachInAChild(ReadNames(list));
    if (WriteCounts != nullptr) {
        const fake::OwnCalls writing;
        WriteCounts();
    }
    return result;
}
