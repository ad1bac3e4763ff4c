// A process that has used up its descriptors: every operation says so and ends, nothing that was
// saved is lost, and all works again as soon as one is free.

#include "Base.h"
#include "CommonApi.h"
#include "Network.h"
#include "Network6.h"

#include "Device.h"


#include <fcntl.h>
#include <sys/resource.h>

using namespace device;

namespace {

constexpr char kName[] = "eth0";

/// Leaves this process `count` free descriptors for the length of a scope.
class FreeDescriptors {
public:
    explicit FreeDescriptors(int count)
    {
        getrlimit(RLIMIT_NOFILE, &before_);
        int limit = 0;
        for (int left = count + 1; left > 0; ++limit) {
            if (fcntl(limit, F_GETFD) < 0) --left;
        }
        rlimit few = before_;
        few.rlim_cur = static_cast<rlim_t>(limit - 1);
        setrlimit(RLIMIT_NOFILE, &few);
    }
    ~FreeDescriptors() { setrlimit(RLIMIT_NOFILE, &before_); }
    FreeDescriptors(const FreeDescriptors&) = delete;
    FreeDescriptors& operator=(const FreeDescriptors&) = delete;

private:
    rlimit before_{};
};

class NoDescriptorTest : public Device {
protected:
    void SetUp() override
    {
        Device::SetUp();
        AddCards(2);
    }
};

TEST_F(NoDescriptorTest, ListingsFailAndSaySo)
{
    char names[32][16];
    int count = 32;
    InterfaceInfo info[4] = {};
    int records = 4;
    char part[] = "eth";
    {
        const FreeDescriptors none(0);
        EXPECT_FALSE(GetAllInterfaceInfo(names, &count));
        EXPECT_FALSE(GetSpecifiedInterfaceInfo(part, names, &count));
        EXPECT_FALSE(GetNormalInterfaceInfo(info, &records));
    }
    EXPECT_EQ(count, 32);
    EXPECT_EQ(records, 4);
    EXPECT_EQ(Log(),
              (LogLines{Error("GetAllInterfaceInfo", "Open file /proc/net/dev failed!\n"),
                        Error("GetSpecifiedInterfaceInfo", "Open file /proc/net/dev failed!"),
                        Error("GetNormalInterfaceInfo", "Open file /proc/net/dev failed!\n")}));
    EXPECT_TRUE(GetAllInterfaceInfo(names, &count));
    EXPECT_EQ(count, 2);
}

TEST_F(NoDescriptorTest, ASocketIsTriedAgainWhenOneIsFree)
{
    {
        const FreeDescriptors none(0);
        EXPECT_FALSE(InterfaceUp(kName));
        EXPECT_FALSE(InterfaceIsLink(kName));
        EXPECT_LT(Net6_GetInterfaceIndex(kName), 0);
    }
    EXPECT_EQ(Log(),
              (LogLines{Error("NetIOCtrl", "open commonSocketfd error.[Too many open files]"),
                        Error("InterfaceUp", "up eth0 failed,getflags error."),
                        Error("InterfaceIsLink", "socket eth0 failed."),
                        Error("NetIOCtrlv6", "open commonSocketfd error.[Too many open files]"),
                        Error("Net6_GetInterfaceIndex", "get eth0 index failed.")}));
    EXPECT_FALSE(IsUp(kName));
    EXPECT_TRUE(InterfaceUp(kName));
    EXPECT_GT(Net6_GetInterfaceIndex(kName), 0);
    EXPECT_TRUE(IsUp(kName));
}

TEST_F(NoDescriptorTest, AKeptSocketGoesOnServing)
{
    ASSERT_TRUE(InterfaceUp(kName));
    const FreeDescriptors none(0);
    EXPECT_TRUE(InterfaceDown(kName));
    EXPECT_TRUE(Net_SetIPbyName(kName, "10.0.0.2", "255.255.255.0"));
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(NoDescriptorTest, ACommandRunsAllTheSame)
{
    {
        const FreeDescriptors none(0);
        EXPECT_TRUE(VorlixRunCmd("exit 3"));
    }
    EXPECT_EQ(Log(), LogLines{});
}

/// A card's address is set and saved while so many descriptors are free.
void SetWith(int freeDescriptors)
{
    SCOPED_TRACE(freeDescriptors);
    const std::string before = Lines({"HOSTIP = 10.0.0.2", "SUBMASK = 255.255.255.0",
                                      "GATEWAYIP = 10.0.0.1", "MTU = 1400"});
    std::string after = before;
    after.replace(after.find("10.0.0.2"), 8, "10.0.0.3");
    Put(CardFile("eth1"), before);
    bool done = false;
    {
        const FreeDescriptors few(freeDescriptors);
        done = NetSetIPByName("eth1", "10.0.0.3", "255.255.255.0");
    }
    const std::string saved = Get(CardFile("eth1"));
    EXPECT_TRUE(saved == before || saved == after) << saved;
    if (!done) EXPECT_NE(output::Caught().find("|Error|"), std::string::npos);
    if (done) EXPECT_EQ(Addresses("eth1"), Texts{"10.0.0.3/24"});

    EXPECT_TRUE(NetSetIPByName("eth1", "10.0.0.3", "255.255.255.0")) << "once there are enough";
    EXPECT_EQ(Get(CardFile("eth1")), after);
}

TEST_F(NoDescriptorTest, ASettingIsSavedWholeOrNotTouchedHoweverFewAreLeft)
{
    Must("ip link set eth1 up");
    for (int freeDescriptors = 0; freeDescriptors < 8; ++freeDescriptors) {
        Child child([freeDescriptors] { SetWith(freeDescriptors); });
        EXPECT_TRUE(child.Wait()) << freeDescriptors;
    }
}

}  // namespace
