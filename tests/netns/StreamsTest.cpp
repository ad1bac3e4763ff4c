// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#include "Arp_Ping.h"
#include "Netlink.h"
#include "VirtInter.h"

#include "Device.h"

#include <fcntl.h>
#include <unistd.h>

using namespace device;

namespace {

/// Standard streams that the application has closed, for the length of a scope: 0 alone, or 0 to
/// `last`. What is opened meanwhile gets their numbers.
class ClosedStreams {
public:
    explicit ClosedStreams(int last) : last_(last)
    {
        fflush(stdout);
        for (int fd = 0; fd <= last_; ++fd) {
            kept_[fd] = fcntl(fd, F_DUPFD_CLOEXEC, 10);
            close(fd);
        }
    }
    ~ClosedStreams()
    {
        for (int fd = 0; fd <= last_; ++fd) {
            dup2(kept_[fd], fd);
            close(kept_[fd]);
        }
    }
    ClosedStreams(const ClosedStreams&) = delete;
    ClosedStreams& operator=(const ClosedStreams&) = delete;

    bool InUse() const
    {
        for (int fd = 0; fd <= last_; ++fd) {
            if (fcntl(fd, F_GETFD) >= 0) return true;
        }
        return false;
    }

private:
    int last_;
    int kept_[3] = {};
};

/// The last stream that is closed; those before it are closed too.
class StreamsTest : public Device, public testing::WithParamInterface<int> {
protected:
    void SetUp() override
    {
        Device::SetUp();
        AddCard("eth0");
        Must("ip link set eth0 up; ip addr add 10.0.0.2/24 dev eth0");
        Must("ip -n peer addr add 10.0.0.1/24 dev eth0");
        alarm(600);  // a request that never ends ends the test
    }

    /// What an operation gives when the streams are closed. It leaves nothing on their numbers.
    template <class Operation>
    static auto WhenClosed(Operation operation)
    {
        bool inUse = true;
        const auto result = [&] {
            const ClosedStreams closed(GetParam());
            const auto given = operation();
            inUse = closed.InUse();
            return given;
        }();
        EXPECT_FALSE(inUse);  // told now that there is somewhere to print to
        return result;
    }
};
INSTANTIATE_TEST_SUITE_P(Closed, StreamsTest, testing::Values(STDIN_FILENO, STDERR_FILENO),
                         [](const auto& last) {
                             return last.param == STDIN_FILENO ? "TheFirst" : "AllThree";
                         });

TEST_P(StreamsTest, ARuleComesAndGoes)
{
    EXPECT_EQ(WhenClosed([] { return Netlink_IPv4Rule(RTM_NEWRULE, "10.0.0.2", 42, 1000); }), 0);
    EXPECT_NE(Must("ip -4 rule").find("from 10.0.0.2 lookup 42"), std::string::npos);
    EXPECT_EQ(WhenClosed([] { return Netlink_IPv4Rule(RTM_DELRULE, "10.0.0.2", 42, 1000); }), 0);
    EXPECT_EQ(Must("ip -4 rule").find("from 10.0.0.2 lookup 42"), std::string::npos);
}

TEST_P(StreamsTest, ARouteComesAndGoesInItsTable)
{
    const auto change = [](int32_t cmd) {
        return Netlink_IPv4Route(cmd, 0, 24, "172.16.1.0", nullptr, "10.0.0.1", "eth0", 0);
    };
    EXPECT_EQ(WhenClosed([=] { return change(RTM_NEWROUTE); }), 0);
    EXPECT_EQ(Routes(), (Texts{"10.0.0.0/24 dev eth0", "172.16.1.0/24 via 10.0.0.1 dev eth0"}));
    EXPECT_EQ(WhenClosed([=] { return change(RTM_DELROUTE); }), 0);
    EXPECT_EQ(Routes(), Texts{"10.0.0.0/24 dev eth0"});
}

TEST_P(StreamsTest, ARequestThatIsRefusedEndsToo)
{
    EXPECT_EQ(WhenClosed([] { return Netlink_IPv4Rule(RTM_DELRULE, "10.0.0.2", 42, 1000); }), 2);
}

TEST_P(StreamsTest, AMacVlanComesAndGoes)
{
    NEEDS_LINK("probe0 link eth0 type macvlan");
    char host[] = "eth0";
    char virt[] = "mac0";
    EXPECT_EQ(WhenClosed([&] {
                  return VirtInter_MacVlanAdd(host, virt, macVlanModeBridge, 0, 0, nullptr);
              }),
              0);
    EXPECT_TRUE(IsUp("mac0"));
    EXPECT_EQ(WhenClosed([&] { return VirtInter_MacVlanDel(host, virt); }), 0);
    EXPECT_NE(Try("ip link show dev mac0").status, 0);
}

TEST_P(StreamsTest, AnIpVlanComesAndGoes)
{
    NEEDS_LINK("probe0 link eth0 type ipvlan");
    char host[] = "eth0";
    char virt[] = "ipvl0";
    EXPECT_EQ(WhenClosed([&] { return VirtInter_IpVlanAdd(host, virt, ipVlanModeL2, 0); }), 0);
    EXPECT_TRUE(IsUp("ipvl0"));
    EXPECT_EQ(WhenClosed([&] { return VirtInter_IpVlanDel(host, virt); }), 0);
    EXPECT_NE(Try("ip link show dev ipvl0").status, 0);
}

TEST_P(StreamsTest, AHostIsFoundAlive)
{
    EXPECT_TRUE(WhenClosed([] { return Ping_CheckAlive("eth0", "10.0.0.2", "10.0.0.1", 10); }));
    EXPECT_FALSE(WhenClosed([] { return Ping_CheckAlive("eth0", "10.0.0.2", "10.0.0.9", 0); }));
}

TEST_P(StreamsTest, AConflictIsFound)
{
    Must("ip -n peer link set eth0 address 02:00:00:00:00:01");
    const auto probe = [] {
        return Arp_Ckeck("eth0", "10.0.0.2", "02:00:00:00:00:01", "10.0.0.1", "ff:ff:ff:ff:ff:ff",
                         1);
    };
    Must("ip link set eth0 address 02:00:00:00:00:01");
    EXPECT_EQ(WhenClosed(probe), 1);
}

}  // namespace
