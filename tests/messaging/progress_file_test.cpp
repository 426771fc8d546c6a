#include <gtest/gtest.h>

#include <string>

#include "dorvutil/messaging/progress.h"
#include "dorvutil/storage/memory_handle.h"

namespace dorvutil {
namespace {

// A file in memory, at its start.
class Bytes : public COrvFileHandleMemory {
public:
    explicit Bytes(const std::string& content)
        : COrvFileHandleMemory(content.data(), static_cast<std::uint32_t>(content.size()), true, eAccessReadWrite) {
        Open();
    }
    std::string Content() const { return std::string(ByteArray().Data(), ByteArray().Count()); }
};

const std::string kSignature("\0\0\0\0\xBC\x3D\xF6\xBB\3\0\x08\0", 12);

TEST(ProgressSignature, IsWrittenByteForByte) {
    Bytes file("");
    const CB_Dialog dialog;
    dialog.WriteMySig(&file);
    EXPECT_EQ(file.Content().substr(4), kSignature.substr(4));
    EXPECT_EQ(file.Content().size(), 12u);
    dialog.WriteMySig(nullptr);
}

TEST(ProgressSignature, IsKnownByMagicAndVersionAlone) {
    const struct {
        const char* name;
        std::size_t at;
        char byte;
        bool good;
    } kCases[] = {
        {"as written", 0, 0, true},         {"first byte", 0, '\xFF', true},     {"fourth byte", 3, 1, true},
        {"magic", 4, '\xBD', false},        {"magic's end", 7, 0, false},        {"version 2", 8, 2, false},
        {"version high byte", 9, 1, false}, {"the ignored number", 10, 9, true}, {"its high byte", 11, 1, true},
    };
    const CB_Dialog dialog;
    for (const auto& c : kCases) {
        std::string content = kSignature;
        content[c.at] = c.byte;
        Bytes file(content + "more");
        EXPECT_EQ(dialog.CheckMySig(&file), c.good) << c.name;
        EXPECT_EQ(file.Tell(), 12) << c.name;
    }
    for (std::size_t size = 0; size < 12; ++size) {
        Bytes cut(kSignature.substr(0, size));
        EXPECT_FALSE(dialog.CheckMySig(&cut)) << size;
    }
    EXPECT_FALSE(dialog.CheckMySig(nullptr));
}

TEST(ProgressFlattened, IsTheNameOfTheState) {
    Bytes file("");
    const CB_Dialog named("name"), stateless(0xFFFFFFF0u);
    named.FlattenMe(&file);
    stateless.FlattenMe(&file);
    EXPECT_EQ(file.Content(), std::string("\4\0name\0\0", 8));
    named.FlattenMe(nullptr);
}

TEST(ProgressFlattened, AttachesToTheStateOfThatName) {
    CB_Dialog target("target");
    target.SetValue1(77);
    CB_Dialog dialog("start");
    const std::uint32_t start = dialog.GetEventID();
    Bytes file(std::string("\6\0target", 8));
    dialog.UnflattenMe(&file);
    EXPECT_EQ(dialog.GetValue1(), 77);
    EXPECT_EQ(CB_Dialog(start).GetEventID(), 0xFFFFFFFFu) << "the old state has ended";
    Bytes fresh(std::string("\3\0new", 5));
    dialog.UnflattenMe(&fresh);
    EXPECT_EQ(CB_Dialog("new").GetEventID(), dialog.GetEventID());
}

TEST(ProgressFlattened, NamesOfAnyBytesKeepTheirIdentity) {
    CB_Dialog first, second;
    Bytes file1(std::string("\3\0a\0b", 5)), file2(std::string("\3\0a\0c", 5));
    first.UnflattenMe(&file1);
    second.UnflattenMe(&file2);
    EXPECT_NE(first.GetEventID(), second.GetEventID());
    EXPECT_EQ(CB_Dialog(first).GetEventID(), first.GetEventID());
}

TEST(ProgressFlattened, DamageChangesNothing) {
    const struct {
        const char* name;
        std::string content;
    } kCases[] = {
        {"empty file", ""},
        {"half a length", "\1"},
        {"empty name", std::string("\0\0", 2)},
        {"name cut short", std::string("\5\0targ", 6)},
        {"length only", "\xFF\xFF"},
    };
    for (const auto& c : kCases) {
        CB_Dialog dialog("start");
        const std::uint32_t id = dialog.GetEventID();
        Bytes file(c.content);
        dialog.UnflattenMe(&file);
        EXPECT_EQ(dialog.GetEventID(), id) << c.name;
    }
    CB_Dialog dialog;
    dialog.UnflattenMe(nullptr);
}

}  // namespace
}  // namespace dorvutil
