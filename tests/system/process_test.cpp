#include "dorvutil/system/process.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <iterator>
#include <string>

#include "dorvutil/frame/accessors.h"
#include "dorvutil/system/system_mgr.h"
#include "system/scratch.h"

namespace dorvutil {
namespace {

TEST(CheckIntConn, AsksOnlyWhomTheHostNamed) {
    EXPECT_TRUE(SetIntConnAddress(nullptr));
    EXPECT_GT(CheckIntConn(), 1u) << "nobody to ask";
    const int port = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);  // of this machine's own network
    sockaddr_in address{AF_INET, 0, {htonl(INADDR_LOOPBACK)}, {}};
    socklen_t size = sizeof(address);
    EXPECT_EQ(::bind(port, reinterpret_cast<sockaddr*>(&address), size), 0);
    EXPECT_EQ(::getsockname(port, reinterpret_cast<sockaddr*>(&address), &size), 0);
    EXPECT_TRUE(SetIntConnAddress(("127.0.0.1:" + std::to_string(ntohs(address.sin_port))).c_str()));
    EXPECT_EQ(CheckIntConn(), static_cast<std::uint32_t>(ECONNREFUSED));
    EXPECT_EQ(::listen(port, 4), 0);
    EXPECT_EQ(CheckIntConn(), 1u);
    for (const char* wrong : {"host", ":80", "host:", "host:x", "host:0", "host:65536", "host:-1", "host:+1", "a b:80",
                              "http://host:80", "::1:80", "[::1:80", "[]:80", "host:99999999999"}) {
        EXPECT_FALSE(SetIntConnAddress(wrong)) << wrong;
    }
    EXPECT_EQ(CheckIntConn(), 1u) << "a refused address leaves the one before";
    ::close(port);
    for (const char* right : {"host:1", "[::1]:65535", "a.example:443"}) EXPECT_TRUE(SetIntConnAddress(right)) << right;
    EXPECT_TRUE(SetIntConnAddress(""));
    EXPECT_GT(CheckIntConn(), 1u);
}

// A named pipe: opening it waits for the process that writes, reading ends when that process has closed it.
class Pipe {
public:
    Pipe() : m_path("/tmp/dorvutil_pipe_" + std::to_string(::getpid())) {
        EXPECT_EQ(::mkfifo(m_path.c_str(), 0600), 0);
    }
    ~Pipe() { ::unlink(m_path.c_str()); }
    const std::string& Path() const { return m_path; }
    std::string Read() const {
        std::ifstream in(m_path);
        return std::string(std::istreambuf_iterator<char>(in), {});
    }

private:
    std::string m_path;
};

TEST(CreateProcess, RunsTheCommandLineThatEndsInTheFile) {
    static constexpr struct {
        const char* name;
        const char* args;  // PIPE: where the answer goes
        const char* exe;
        const char* folder;
        const char* expected;
    } cases[] = {
        {"words keep their order", "/bin/sh -c \"echo $0-$1-$2 > PIPE\" a b", "c", nullptr, "a-b-c\n"},
        {"quotes keep blanks", "sh -c \"echo $0 > PIPE\"", "\"a  b\"", nullptr, "a b\n"},
        {"the file is a path", "sh -c \"echo $0 > PIPE\"", "\\tmp\\x", nullptr, "/tmp/x\n"},
        {"arguments are not", "sh -c \"printf %s $0 > PIPE\" a\\\\b", "", nullptr, "a\\\\b"},
        {"in a folder", "sh -c \"pwd > PIPE\"", "", "\\usr\\bin\\", "/usr/bin\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const Pipe pipe;
        std::string args = c.args;
        args.replace(args.find("PIPE"), 4, pipe.Path());
        ASSERT_EQ(PM_CreateProcess(c.exe, c.folder, args.c_str()), 0);
        EXPECT_EQ(pipe.Read(), c.expected);
    }
    EXPECT_EQ(PM_CreateProcess("\\bin\\true", nullptr, nullptr), 0);
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "no child is left for the host to wait for";
    EXPECT_EQ(errno, ECHILD);
}

TEST(OpenDocument, HandsTheDesktopsProgramAFileOrAUrl) {
    const testing_support::Scratch scratch;
    ::chmod(scratch.Write("xdg-open", "#!/bin/sh\nprintf %s \"$1\" > \"$ANSWER\"\n").c_str(), 0700);
    const std::string path = ::getenv("PATH");
    COrvSystemMgrBase& manager = *GetSystemMgr();
    ::unsetenv("WAYLAND_DISPLAY");
    ::setenv("DISPLAY", "", 1);
    EXPECT_FALSE(manager.OpenDocument("\\etc\\passwd")) << "no desktop";
    ::setenv("DISPLAY", ":9", 1);
    ::setenv("PATH", "/no/programs", 1);
    EXPECT_FALSE(manager.OpenDocument("\\etc\\passwd")) << "no opener";
    ::setenv("PATH", scratch.Path("").c_str(), 1);
    static constexpr const char* kCases[][2] = {{"C:\\maps\\a b.pdf", "/maps/a b.pdf"},
                                                {"https://a.example/?q=\xC3\xA9", "https://a.example/?q=\xC3\xA9"},
                                                {"--help", "./--help"}};
    for (const auto& [target, expected] : kCases) {
        const Pipe pipe;
        ::setenv("ANSWER", pipe.Path().c_str(), 1);
        ASSERT_TRUE(manager.OpenDocument(target));
        EXPECT_EQ(pipe.Read(), expected);
    }
    EXPECT_FALSE(manager.OpenDocument(""));
    ::setenv("PATH", path.c_str(), 1);
    ::unsetenv("DISPLAY");
}

TEST(CreateProcess, SaysWhatCouldNotBeStarted) {
    EXPECT_EQ(PM_CreateProcess(nullptr, nullptr, "true"), -2012);
    EXPECT_EQ(PM_CreateProcess("\\no\\such\\program", nullptr, ""), -2003);
    EXPECT_EQ(PM_CreateProcess("true", "\\no such folder", nullptr), -2003);
    EXPECT_EQ(PM_CreateProcess("", nullptr, " "), -2003);
    EXPECT_EQ(PM_CreateProcess("\"\"", nullptr, ""), -2003);
    std::string many = "true";
    for (int i = 0; i < 70; ++i) many += " x";
    EXPECT_EQ(PM_CreateProcess(many.c_str(), nullptr, ""), -2003);
}

}  // namespace
}  // namespace dorvutil
