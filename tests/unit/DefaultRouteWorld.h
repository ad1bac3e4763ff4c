// SPDX-FileCopyrightText: 2026 the Vorlix network layer authors
// SPDX-License-Identifier: MIT

#pragma once

// The device of the tests of the default card and of the default routes.

#include "CommonApi.h"

#include "RouteWorld.h"

#include <cstring>

namespace fake {

inline const Route kNet0{"192.168.1.0", "0.0.0.0", "255.255.255.0", "eth0"};
inline const Route kNet1{"10.1.1.0", "0.0.0.0", "255.255.255.0", "eth1"};
inline const Route kDefault0{"0.0.0.0", "192.168.1.1", "0.0.0.0", "eth0"};
inline const Route kDefault1{"0.0.0.0", "10.1.1.1", "0.0.0.0", "eth1"};
inline const Route kOtherDefault1{"0.0.0.0", "10.1.1.9", "0.0.0.0", "eth1"};

inline const Route6 kNet6{"2001:db8::", 64, "::", "eth0"};
inline const Route6 kDefault60{"::", 0, "fe80::1", "eth0"};
inline const Route6 kDefault61{"::", 0, "fe80::2", "eth1"};

inline const std::string kFile60 = "/mnt/mtd/Config/networkip6";
inline const std::string kFile61 = "/mnt/mtd/Config/networkip61";

inline const Texts kTexts60 = {"0:0:0::0", "fe80::1", "0:0:0::0", "eth0"};

/// Two cards with saved gateways of both families; eth0 is the saved default card.
class DefaultRouteWorld : public RouteWorld {
protected:
    void SetUp() override
    {
        RouteWorld::SetUp();
        Put(CardFile("eth0"), Settings({"GATEWAYIP = 192.168.1.1", "DEFAULT_ETH = eth0"}));
        Put(CardFile("eth1"), Settings({"GATEWAYIP = 10.1.1.1"}));
        Put(kFile60, Settings({"GATEWAYIP = fe80::1"}));
        Put(kFile61, Settings({"GATEWAYIP = fe80::2"}));
    }

    /// As many rows as asked for, none of them a default route.
    static Routes Nets(int count)
    {
        Routes nets;
        for (int i = 1; i <= count; ++i) {
            nets.push_back(
                {"172.16." + std::to_string(i) + ".0", "0.0.0.0", "255.255.255.0", "eth1"});
        }
        return nets;
    }
};

}  // namespace fake
