// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

// The power supply of the ports: its requests, and the operations that pass them on.

#include "CommonApi.h"
#include "Switch.h"

#include "fake/World.h"

#include <cstring>
#include <functional>

using namespace fake;

namespace {

using Calls = std::vector<std::string>;

constexpr char kDevice[] = "/dev/qv_poe";
constexpr char kOpens[] = "open /dev/qv_poe O_RDWR";
constexpr char kCloses[] = "close /dev/qv_poe";

class PowerSupplyTest : public World {
protected:
    void SetUp() override
    {
        World::SetUp();
        Put(kDevice, "");
        for (size_t i = 0; i < sizeof(kernel.power.info); ++i) {
            kernel.power.info[i] = static_cast<uint8_t>(i);
        }
    }
};

/// An operation of the driver, and the public one that stands for it: the log names the former.
struct Request {
    const char* operation;
    const char* number;  // as the message tells it
    std::string traced;
    std::function<bool()> run;
    std::function<bool()> runPublic;
};

std::vector<Request> Requests()
{
    static PoeInfo_t info;
    return {
        {"PoE_GetPowerInfo", "2164281345", "ioctl 0x81005001",
         [] { return PoE_GetPowerInfo(&info); }, [] { return GetPoEPowerInfo(&info); }},
        {"PoE_SetPowerOn", "1074024451", "ioctl 0x40045003 2147483653",
         [] { return PoE_SetPowerOn(0x80000005U); }, [] { return SetPoEPowerOn(0x80000005U); }},
        {"PoE_SetPowerOff", "1074024450", "ioctl 0x40045002 4294967295",
         [] { return PoE_SetPowerOff(0xFFFFFFFFU); }, [] { return SetPoEPowerOff(0xFFFFFFFFU); }},
        {"PoE_SetTotalPower", "1074024453", "ioctl 0x40045005 0",
         [] { return PoE_SetTotalPower(0); }, [] { return SetPoETotalPower(0); }},
    };
}

TEST_F(PowerSupplyTest, EachRequestOpensTheDeviceAndClosesIt)
{
    for (const Request& request : Requests()) {
        SCOPED_TRACE(request.operation);
        for (const auto& run : {request.run, request.runPublic}) {
            ClearTrace();
            EXPECT_TRUE(run());
            EXPECT_EQ(Trace(), (Calls{kOpens, request.traced, kCloses}));
        }
    }
    EXPECT_EQ(Log(), LogLines{});
}

TEST_F(PowerSupplyTest, WithoutTheDeviceEachFailsAndLeavesNothingOpen)
{
    Remove(kDevice);
    for (const Request& request : Requests()) {
        SCOPED_TRACE(request.operation);
        for (const auto& run : {request.run, request.runPublic}) {
            ClearLog();
            ClearTrace();
            EXPECT_FALSE(run());
            EXPECT_EQ(Log(),
                      (LogLines{Error(request.operation, "open /dev/qv_poe failed.[No such file or "
                                                         "directory]")}));
            EXPECT_EQ(Trace(), Calls{kOpens});
        }
    }
    EXPECT_EQ(OpenHandles(), Calls{});
}

TEST_F(PowerSupplyTest, ARefusalTellsTheRequestAndTheReason)
{
    for (const Request& request : Requests()) {
        SCOPED_TRACE(request.operation);
        ClearLog();
        ClearTrace();
        Fail(request.traced, EIO);
        EXPECT_FALSE(request.run());
        EXPECT_EQ(Log(), (LogLines{Error(request.operation, "cmd " + std::string(request.number) +
                                                                " error.[Input/output error]")}));
        EXPECT_EQ(Trace(), (Calls{kOpens, request.traced, kCloses}));
    }
}

TEST_F(PowerSupplyTest, ARefusalIsToldBeforeTheDeviceIsClosed)
{
    for (const Request& request : Requests()) {
        ClearLog();
        size_t told = 0;
        Fail(request.traced, EIO);
        OnCall(kCloses, [&] { told = Log().size(); });
        EXPECT_FALSE(request.run());
        EXPECT_EQ(told, 1U) << request.operation;
    }
}

TEST_F(PowerSupplyTest, OnlyANegativeAnswerIsARefusal)
{
    for (const Request& request : Requests()) {
        SCOPED_TRACE(request.operation);
        ClearLog();
        kernel.power.result = 1;
        EXPECT_TRUE(request.run());
        EXPECT_EQ(Log(), LogLines{});
        kernel.power.result = -2;
        EXPECT_FALSE(request.run());
        EXPECT_EQ(Log().size(), 1U);
    }
}

TEST_F(PowerSupplyTest, LeavesNothingOpenWhateverFails)
{
    static bool done;
    for (const Request& request : Requests()) {
        FailEachCall([&] { done = request.runPublic(); },
                     [](const std::string&) { EXPECT_FALSE(done); }, {});
    }
}

TEST_F(PowerSupplyTest, PortsAreFedAndCutOffByTheirBits)
{
    EXPECT_TRUE(SetPoEPowerOn(0x8000000FU));
    EXPECT_TRUE(SetPoEPowerOff(0x00000003U));
    EXPECT_TRUE(SetPoETotalPower(4000000000U));
    EXPECT_EQ(kernel.power.on, 0x8000000CU);
    EXPECT_EQ(kernel.power.total, 4000000000U);
}

// ---- the state of the supply

class PoE_GetPowerInfoTest : public PowerSupplyTest {
protected:
    void SetUp() override
    {
        PowerSupplyTest::SetUp();
        memset(&info_, 0xEE, sizeof(info_));
    }

    /// True when each byte of the record is this one.
    bool IsFilledWith(unsigned char byte) const
    {
        PoeInfo_t wanted;
        memset(&wanted, byte, sizeof(wanted));
        return memcmp(&info_, &wanted, sizeof(wanted)) == 0;
    }

    PoeInfo_t info_;
};

TEST_F(PoE_GetPowerInfoTest, HandsOutTheDriversRecordAsItIs)
{
    EXPECT_TRUE(PoE_GetPowerInfo(&info_));
    EXPECT_EQ(memcmp(&info_, kernel.power.info, sizeof(info_)), 0);
    EXPECT_EQ(info_.power[31], 0x4B4A);
    EXPECT_EQ(info_.averagePower, 0x67666564U);
}

TEST_F(PoE_GetPowerInfoTest, ClearsTheRecordOnlyOnceTheDeviceIsOpen)
{
    Fail(kOpens, ENODEV);
    EXPECT_FALSE(PoE_GetPowerInfo(&info_));
    EXPECT_TRUE(IsFilledWith(0xEE));
    Fail("ioctl 0x81005001", EIO);
    EXPECT_FALSE(PoE_GetPowerInfo(&info_));
    EXPECT_TRUE(IsFilledWith(0));
}

TEST_F(PoE_GetPowerInfoTest, NullIsRefusedInSilence)
{
    EXPECT_FALSE(PoE_GetPowerInfo(nullptr));
    EXPECT_FALSE(GetPoEPowerInfo(nullptr));
    EXPECT_EQ(Trace(), Calls{});
    EXPECT_EQ(Log(), LogLines{});
}

}  // namespace
