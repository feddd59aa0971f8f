#include "simulator/path_map.h"

#include <gtest/gtest.h>

namespace {

struct PathCase {
    char const* path;
    char const* ours;  ///< null: the host's
    bool node = false;
};

TEST(PathMap, KnowsTheMachinesPaths) {
    for (PathCase const& each :
         {PathCase{"/sys/bus/pci/devices", "/sys/bus/pci/devices"},
          PathCase{"/sys/bus/pci/slots/1/address", "/sys/bus/pci/slots/1/address"},
          PathCase{"/sys/bus/pcie/devices", nullptr},
          PathCase{"/sys/bus", nullptr},
          PathCase{"/sys/block", "/sys/block"},
          PathCase{"/sys/blocks", nullptr},
          PathCase{"/sys/devices/pci0000:0b/x", "/sys/devices/pci0000:0b/x"},
          PathCase{"/sys/devices/system/cpu", nullptr},
          PathCase{"/dev/xqrth", "/dev/xqrth"},
          PathCase{"/dev/xqrth/c0d0", "/dev/xqrth/c0d0", true},
          PathCase{"/dev/sg0", "/dev/sg0", true},
          PathCase{"/dev/sg12", "/dev/sg12", true},
          PathCase{"/dev/sg", nullptr},
          PathCase{"/dev/sg1a", nullptr},
          PathCase{"/dev/mpt2ctl", "/dev/mpt2ctl", true},
          PathCase{"/dev/mpt2ctl0", nullptr},
          PathCase{"/dev/null", nullptr},
          PathCase{"/etc/mtab", "/etc/mtab"},
          PathCase{"/etc/fstab.d", nullptr},
          PathCase{"/sys/firmware/efi", nullptr},
          PathCase{"/sys/firmware/efi/efivars/BootOrder", "/sys/firmware/efi/efivars/BootOrder"},
          PathCase{"/var/ksl/Component.log", "/var/ksl/Component.log"},
          PathCase{"//sys//block/./x/", "/sys/block/x"},
          PathCase{"/sys/class/../block", "/sys/block"},
          PathCase{"/sys/block/../class", nullptr},
          PathCase{"/sys/block/../../../etc/passwd", nullptr},
          PathCase{"sys/block", nullptr},
          PathCase{"", nullptr}}) {
        std::optional<std::string> const ours = simulator::machinePath(each.path, true);
        EXPECT_EQ(each.ours != nullptr, ours.has_value()) << each.path;
        if (each.ours == nullptr || !ours) continue;
        EXPECT_EQ(each.ours, *ours);
        EXPECT_EQ(each.node, simulator::isNodePath(*ours)) << each.path;
    }
    EXPECT_FALSE(simulator::machinePath("/var/ksl", false))
        << "the logs are the machine's for whole programs only";
}

}  // namespace
