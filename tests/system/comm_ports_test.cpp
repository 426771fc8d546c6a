#include "dorvutil/system/comm_ports.h"

#include <gtest/gtest.h>

#include <iterator>
#include <string>
#include <vector>

#include "dorvutil/system/comm_port_map.h"
#include "system/scratch.h"

namespace dorvutil {
namespace {

using testing_support::Scratch;

const std::vector<int> kUsual = {8, 4, 5, 6, 7, 9, 10, 3, 2, 1};
const std::vector<int> kRates = {115200, 4800, 9600, 57600, 38400, 1200, 2400, 19200};

std::vector<int> Items(const TVector<int>& vector) { return {vector.begin(), vector.end()}; }

// The machine has the ports of this tree.
class CommPorts : public testing::Test {
protected:
    CommPorts() { platform::UseSerialPortRoot(m_root.c_str()); }
    ~CommPorts() override { platform::UseSerialPortRoot(nullptr); }
    void Plug(const std::string& name) const { m_tree.Write("tty/" + name + "/device/uevent", ""); }

    const Scratch m_tree;
    const std::string m_root = m_tree.Path("tty");
    const COrvCommPortsDiscoverer m_discoverer{};
};

TEST_F(CommPorts, WithoutPortsTheUsualOnesAreReferredTo) {
    TVector<int> ports, rates, again, filled;
    m_discoverer.GetCommPorts(ports, rates);
    EXPECT_TRUE(Items(ports) == kUsual && Items(rates) == kRates);
    EXPECT_FALSE(ports.OwnsMemory() || rates.OwnsMemory());
    m_discoverer.GetCommPorts(again, filled);
    EXPECT_TRUE(again.Data() == ports.Data() && filled.Data() == rates.Data()) << "copied";
    for (std::uint32_t i = 0; i < 10; ++i) EXPECT_EQ(m_discoverer.CommPortByIndex(i), kUsual[i]);
    EXPECT_EQ(m_discoverer.CommPortByIndex(10), 0);
    EXPECT_STREQ(GetCommPortDevice(8).c_str(), "");
}

TEST_F(CommPorts, PortsOfTheMachineAreOfferedAsTheyAreNow) {
    Plug("ttyUSB3");
    TVector<int> ports, rates;
    m_discoverer.GetCommPorts(ports, rates);
    Plug("ttyS1");
    m_discoverer.GetCommPorts(ports, rates);
    EXPECT_EQ(Items(ports), std::vector<int>{1004}) << "it was not empty";
    EXPECT_TRUE(m_discoverer.CommPortByIndex(0) == 2 && m_discoverer.CommPortByIndex(1) == 1004);
    EXPECT_STREQ(GetCommPortDevice(1004).c_str(), "/dev/ttyUSB3");
    EXPECT_STREQ(GetCommPortDevice(1).c_str(), "");
    int foreign[] = {0};
    TVector<int> wrapped(foreign, 1, false);
    ASSERT_TRUE(wrapped.DeleteAt(0));
    m_discoverer.GetCommPorts(wrapped, rates);
    EXPECT_EQ(Items(wrapped), (std::vector<int>{2, 1004})) << "an empty vector that cannot grow";
}

TEST_F(CommPorts, TextsJoinTheListsAndRatesHaveTheirPlaces) {
    ListMgr<ORVwstring> ports, rates(false);
    ORVwstring first(u"first");
    ports.Add(&first);
    m_discoverer.GetCommPortsAsStrings(ports, rates);
    ASSERT_EQ(ports.Count(), 11u);
    EXPECT_TRUE(*ports[0] == u"first" && *ports[1] == u"COM8" && *ports[7] == u"COM10");
    ASSERT_EQ(rates.Count(), 8u);
    for (std::uint32_t i = 0; i < 8; ++i) {
        EXPECT_EQ(rates[i]->c_str(), std::to_string(kRates[i]));
        EXPECT_EQ(m_discoverer.BaudRateByIndex(i), kRates[i]);
        delete rates[i];
    }
    EXPECT_TRUE(m_discoverer.BaudRateByIndex(8) == 0 && m_discoverer.BaudRateByIndex(0xFFFFFFFFu) == 0);
}

TEST(CommPortMap, OnlySerialEntriesCountAndTellTheirNumber) {
    const platform::SerialPort entries[] = {{"\\Device\\Serial0", "COM3", ""},
                                            {"\\Device\\ProlificSerial7", "COM12x", ""},
                                            {"\\Device\\VCP0", "COM4", ""},
                                            {"serial", "COM6", ""},
                                            {"Serial", "COM", ""},
                                            {"Serial", "", ""},
                                            {"Serial", "LPT1", ""},
                                            {"Serial", "com1", ""},
                                            {"Serial", " COM1", ""},
                                            {"Serial", "COM 7", ""},
                                            {"Serial", "COM2147483648", ""},
                                            {"Serial", "COM2147483647", ""}};
    TVector<int> ports;
    AddCommPorts(entries, std::size(entries), ports);
    EXPECT_EQ(Items(ports), (std::vector<int>{3, 12, -1, -1, -1, -1, -1, 7, -1, 2147483647}));
}

}  // namespace
}  // namespace dorvutil
