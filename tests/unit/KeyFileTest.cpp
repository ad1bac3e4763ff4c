#include "Support/KeyFile.h"

#include "fake/World.h"

using namespace fake;

namespace {

constexpr char kFile[] = "/mnt/mtd/Config/network1";

class SetValueByKeyTest : public World {};

TEST_F(SetValueByKeyTest, CreatesAMissingFileAndSaysSo)
{
    EXPECT_TRUE(SetValueByKey(kFile, "MTU", "1500"));
    EXPECT_EQ(Get(kFile), "MTU = 1500\n");
    EXPECT_EQ(Log(), (LogLines{Error("SetValueByKey",
                                     "cannot fopen for read.[No such file or directory]")}));
}

TEST_F(SetValueByKeyTest, NothingIsLeftHeldWhateverFails)
{
    Put(kFile, Settings({"MTU = 1500", "HOSTIP = 10.0.0.2"}));
    FailEachCall([] { SetValueByKey(kFile, "MTU", "1400"); });
}

}  // namespace
