#include "Base.h"

#include "fake/World.h"

#include <net/if.h>

using namespace fake;

namespace {

class InterfaceUpTest : public World {};

TEST_F(InterfaceUpTest, SetsOnlyTheUpFlag)
{
    kernel.Add("eth1").flags = IFF_BROADCAST;
    EXPECT_TRUE(InterfaceUp("eth1"));
    EXPECT_EQ(TraceOf({"ioctl"}),
              (std::vector<std::string>{"ioctl SIOCGIFFLAGS eth1", "ioctl SIOCSIFFLAGS eth1"}));
    EXPECT_EQ(kernel.At("eth1").flags, IFF_BROADCAST | IFF_UP);
}

class VorlixRunCmdTest : public World {};

TEST_F(VorlixRunCmdTest, HandsTheTextToTheShell)
{
    EXPECT_TRUE(VorlixRunCmd("ifconfig eth1 down"));
    EXPECT_EQ(Commands(), std::vector<std::string>{"ifconfig eth1 down"});
}

class GetAllInterfaceInfoTest : public World {};

TEST_F(GetAllInterfaceInfoTest, KeepsTheKindsOfADeviceInTheirOrder)
{
    for (const char* name :
         {"veth0", "br-1234", "docker0", "lo", "eth0", "bond0", "br0", "vnic0", "usb0"}) {
        kernel.Add(name);
    }
    char names[32][16];
    int count = 32;
    EXPECT_TRUE(GetAllInterfaceInfo(names, &count));
    ASSERT_EQ(count, 4);
    EXPECT_STREQ(names[0], "eth0");
    EXPECT_STREQ(names[3], "usb0");
}

}  // namespace
