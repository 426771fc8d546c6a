#include "ports_report.h"

#include <gtest/gtest.h>

#include <sstream>

namespace roadlyn {
namespace {

std::string Written(const PortOffer& offer, bool tsv) {
    std::ostringstream out;
    WritePorts(out, offer, tsv);
    return out.str();
}

TEST(PortsReport, TellsPortsOfTheMachineFromTheUsualOnes) {
    const std::string head = "kind\tname\tnumber\tdevice\n", rate = "baud_rate\t4800\t4800\t\n";
    const PortOffer found = {{{1001, "/dev/ttyUSB0"}}, {4800}, false}, usual = {{{8, ""}}, {4800}, true};
    EXPECT_EQ(Written(found, false),
              "Serial ports of this machine:\n  COM1001  number 1001  device /dev/ttyUSB0\nBaud rates: 4800\n");
    EXPECT_EQ(Written(found, true), head + "port\tCOM1001\t1001\t/dev/ttyUSB0\n" + rate);
    EXPECT_EQ(Written(usual, true), head + "usual_port\tCOM8\t8\t\n" + rate);
    EXPECT_EQ(Written(usual, false).rfind("This machine has no serial port; the usual ones", 0), 0u);
    const PortOffer here = FindPorts();
    ASSERT_FALSE(here.ports.empty());
    EXPECT_TRUE(here.baudRates.size() == 8 && here.usualOnly == here.ports.front().device.empty());
}

}  // namespace
}  // namespace roadlyn
