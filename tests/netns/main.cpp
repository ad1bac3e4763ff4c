// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The tests run on the real kernel, in network and mount namespaces of their own: the program
// starts itself again through enter.sh unless it is inside already or only lists its tests.

#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include <unistd.h>

namespace {

/// Returns only when there is no way in.
void Enter(char** argv)
{
    char self[PATH_MAX] = {};
    if (readlink("/proc/self/exe", self, sizeof(self) - 1) < 0) return;

    char enter[] = VORLIX_ENTER;
    std::vector<char*> arguments{enter, self};
    for (char** argument = argv + 1; *argument != nullptr; ++argument) {
        arguments.push_back(*argument);
    }
    arguments.push_back(nullptr);
    execv(enter, arguments.data());
}

/// GoogleTest keeps to itself why a test is skipped. Said at its end, when standard output is back.
class TellWhySkipped : public testing::EmptyTestEventListener {
    void OnTestEnd(const testing::TestInfo& test) override
    {
        const testing::TestResult& result = *test.result();
        for (int i = 0; i < result.total_part_count(); ++i) {
            const testing::TestPartResult& part = result.GetTestPartResult(i);
            if (part.skipped()) printf("skipped: %s\n", part.message());
        }
    }
};

}  // namespace

int main(int argc, char** argv)
{
    std::vector<char*> given(argv, argv + argc + 1);  // gtest takes its flags out of argv
    testing::InitGoogleTest(&argc, argv);
    const bool inside = getenv("VORLIX_NETNS") != nullptr;
    if (!inside && !testing::GTEST_FLAG(list_tests)) {
        Enter(given.data());
        perror(VORLIX_ENTER);
        return EXIT_FAILURE;
    }
    testing::UnitTest::GetInstance()->listeners().Append(new TellWhySkipped);
    return RUN_ALL_TESTS();
}
