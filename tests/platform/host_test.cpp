#include "dorvutil/platform/host.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "dorvutil/platform/clock.h"

namespace dorvutil::platform {
namespace {

TEST(ModulePath, NamesTheTestBinaryWithBackslashes) {
    const std::u16string path = ModulePath();
    const std::u16string ending = u"\\platform_tests";
    ASSERT_GT(path.size(), ending.size());
    EXPECT_EQ(path[0], u'\\');
    EXPECT_EQ(path.find(u'/'), std::u16string::npos);
    EXPECT_EQ(path.substr(path.size() - ending.size()), ending);
}

TEST(MessageBox, WritesOneLine) {
    const std::u16string longText(5000, u'x');
    const struct {
        const char* name;
        const char16_t* caption;
        const char16_t* text;
        std::string expected;
    } cases[] = {
        {"plain", u"Message", u"No map", "Message: No map\n"},
        {"lines in text and caption", u"Mess\nage", u"a\r\nb\tc\x7F", "Mess age: a  b c \n"},
        {"terminal escape", u"\x1B[2J", u"\u009B2J", " [2J:  2J\n"},
        {"line separator", u"", u"a\u2028b", ": a b\n"},
        {"beyond ASCII", u"\u00FC", u"\u20AC \U0001F697", "\xC3\xBC: \xE2\x82\xAC \xF0\x9F\x9A\x97\n"},
        {"lone surrogates", u"c", u"\xD83D-\xDE97", "c: \xEF\xBF\xBD-\xEF\xBF\xBD\n"},
        {"null", nullptr, nullptr, ": \n"},
        {"cut", u"c", longText.c_str(), ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        testing::internal::CaptureStderr();
        EXPECT_EQ(ShowMessageBox(c.text, c.caption, 48), 1);
        const std::string shown = testing::internal::GetCapturedStderr();
        if (c.expected.empty()) {
            EXPECT_LE(shown.size(), 4096u);
            EXPECT_EQ(shown.find('\n'), shown.size() - 1);
        } else {
            EXPECT_EQ(shown, c.expected);
        }
    }
}

TEST(PostQuit, EachRequestIsTakenOnceInOrderAndAFullQueueKeepsTheNewest) {
    std::int32_t code = 99;
    EXPECT_FALSE(PostedQuit(code));
    EXPECT_EQ(code, 99);
    PostQuit(-1);
    std::thread([] { PostQuit(3); }).join();
    EXPECT_TRUE(PostedQuit(code) && code == -1);
    EXPECT_TRUE(PostedQuit(code) && code == 3);
    EXPECT_FALSE(PostedQuit(code));
    for (std::int32_t i = 0; i < 1000; ++i) PostQuit(i);
    while (PostedQuit(code)) {
    }
    EXPECT_EQ(code, 999);
}

TEST(ReserveRange, TakesAddressesAndNoMemory) {
    constexpr std::size_t kSize = std::size_t{1} << 34;
    void* const base = ReserveRange(kSize);
    ASSERT_NE(base, nullptr);
    ReleaseRange(base, kSize);
    EXPECT_EQ(ReserveRange(~std::size_t{0} / 2), nullptr);
    ReleaseRange(nullptr, kSize);
}

TEST(Clock, ShiftsMoveBothClocks) {
    const std::uint32_t tick = TickCount();
    ShiftTick(0u - tick - 5);
    EXPECT_GE(TickCount(), 0xFFFF0000u);
    ShiftTick(0u - tick + 5);
    EXPECT_LT(TickCount(), 0x10000u);
    ShiftTick(0);
    EXPECT_LT(TickCount() - tick, 0x10000u);
    const std::uint64_t now = FileTimeNow();
    ShiftFileTime(-864'000'000'000);
    EXPECT_LT(FileTimeNow(), now - 800'000'000'000);
    ShiftFileTime(0);
    EXPECT_GE(FileTimeNow(), now);
    EXPECT_GT(now, 133'485'408'000'000'000u) << "1 January 2024";
}

}  // namespace
}  // namespace dorvutil::platform
