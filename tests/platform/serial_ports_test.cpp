#include "dorvutil/platform/serial_ports.h"

#include <gtest/gtest.h>

#include <string>

#include "system/scratch.h"

namespace dorvutil::platform {
namespace {

using testing_support::Scratch;

// What the kernel shows of a terminal; null: it does not.
struct Terminal {
    const char* name;
    bool hasDevice;
    const char *driver, *type, *number;
};

void Make(const Scratch& tree, const Terminal& terminal) {
    const std::string folder = std::string("tty/") + terminal.name + "/";
    tree.Write(folder + "uevent", "");
    if (terminal.type) tree.Write(folder + "type", terminal.type);
    if (terminal.number) tree.Write(folder + "dev", terminal.number);
    if (!terminal.hasDevice) return;
    tree.Write(folder + "device/uevent", "");
    if (!terminal.driver) return;
    std::filesystem::create_symlink(std::string("../../drivers/") + terminal.driver,
                                    tree.Path(folder + "device/driver"));
}

std::string List(const std::string& root) {
    const SerialPortList list = ListSerialPorts(root.c_str());
    std::string text;
    for (std::size_t i = 0; i < list.count; ++i) {
        const SerialPort& port = list.ports[i];
        EXPECT_NE(std::string(port.name).find("Serial"), std::string::npos) << port.name;
        text += std::string(port.data) + "=" + port.device + " ";
    }
    return text;
}

TEST(SerialPorts, AreTheTerminalsWithHardwareBehindThemInTheOrderOfTheirNumbers) {
    const Scratch tree;
    const Terminal terminals[] = {
        {"console", false, 0, 0, "5:1\n"},
        {"ttyS0", true, "port", "4\n", "4:64\n"},
        {"ttyS1", true, "port", "0\n", "4:65\n"},
        {"ttyS2", true, "serial8250", 0, "4:66\n"},
        {"ttyS3", true, "serial", 0, "4:67\n"},
        {"ttyS10", true, "port", "4\n", "4:74\n"},
        {"ttyUSB0", true, "ftdi_sio", 0, "188:0\n"},
        {"ttyACM0", true, "cdc_acm", 0, "166:0\n"},
        {"ttyAMA1", true, "uart-pl011", "32\n", "204:65\n"},
        {"rfcomm0", true, 0, 0, "216:0\n"},
        {"ttyS998", true, "port", "4\n", "4:1062\n"},
        {"ttyS999", true, "port", "4\n", "4:100\n"},
        {"ttymxc0", true, "imx-uart", "62\n", "207:16\n"},
        {"ttyX0", true, "x", 0, 0},
        {"ttyX3", true, "x", 0, "4096:1\n"},
        {"ttyX4", true, "x", 0, "240:1x\n"},
        {"ttyXWithANameThatIsLongerThanTheKernelTakesForATerminalOfAnyDriver", true, "x", 0, "240:9\n"}};
    for (const Terminal& terminal : terminals) Make(tree, terminal);
    EXPECT_EQ(List(tree.Path("tty")),
              "COM1=/dev/ttyS0 COM4=/dev/ttyS3 COM11=/dev/ttyS10 COM999=/dev/ttyS998 COM1001=/dev/ttyUSB0 "
              "COM2001=/dev/ttyACM0 COM3002=/dev/ttyAMA1 COM4001=/dev/rfcomm0 "
              "COM1004100=/dev/ttyS999 COM1207016=/dev/ttymxc0 ");
    for (const std::string& none : {tree.Path("none"), tree.Write("file", ""), std::string(600, 'x')}) {
        EXPECT_EQ(List(none), "") << none;
    }
}

}  // namespace
}  // namespace dorvutil::platform
