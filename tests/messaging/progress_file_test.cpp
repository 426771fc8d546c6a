#include <gtest/gtest.h>

#include <string>

#include "dorvutil/messaging/progress.h"
#include "dorvutil/storage/memory_handle.h"

namespace dorvutil {
namespace {

// A file in memory, at its start.
struct Bytes : COrvFileHandleMemory {
    explicit Bytes(const std::string& content)
        : COrvFileHandleMemory(content.data(), static_cast<std::uint32_t>(content.size()), true, eAccessReadWrite) {
        Open();
    }
    std::string Content() const { return std::string(ByteArray().Data(), ByteArray().Count()); }
};

const std::string kSignature("\0\0\0\0\xBC\x3D\xF6\xBB\3\0\x08\0", 12);

TEST(ProgressSignature, IsKnownByMagicAndVersionAlone) {
    const CB_Dialog dialog;
    Bytes written("");
    dialog.WriteMySig(&written);
    EXPECT_EQ(written.Content().substr(4), kSignature.substr(4));
    static constexpr bool kCounts[] = {false, false, false, false, true, true, true, true, true, true, false, false};
    for (std::size_t at = 0; at < 12; ++at) {
        std::string content = kSignature + "more";
        content[at] = static_cast<char>(content[at] ^ 1);
        Bytes file(content), cut(kSignature.substr(0, at));
        EXPECT_EQ(dialog.CheckMySig(&file), !kCounts[at]) << at;
        EXPECT_EQ(file.Tell(), 12) << at;
        EXPECT_FALSE(dialog.CheckMySig(&cut)) << at;
    }
    dialog.WriteMySig(nullptr);
    EXPECT_FALSE(dialog.CheckMySig(nullptr));
}

TEST(ProgressFlattened, AttachesToTheStateOfThatName) {
    Bytes file("");
    const CB_Dialog named("name"), stateless(0xFFFFFFF0u);
    named.FlattenMe(&file);
    stateless.FlattenMe(&file);
    named.FlattenMe(nullptr);
    EXPECT_EQ(file.Content(), std::string("\4\0name\0\0", 8));
    file.Seek(0, eSeekSet);
    CB_Dialog dialog("start");
    const std::uint32_t start = dialog.GetEventID();
    dialog.UnflattenMe(&file);
    EXPECT_EQ(dialog.GetEventID(), named.GetEventID());
    EXPECT_EQ(CB_Dialog(start).GetEventID(), 0xFFFFFFFFu) << "the old state has ended";
    Bytes zero(std::string("\3\0a\0b\3\0a\0c", 10));
    CB_Dialog other;
    dialog.UnflattenMe(&zero);
    other.UnflattenMe(&zero);
    EXPECT_NE(dialog.GetEventID(), other.GetEventID()) << "names of any bytes keep their identity";
    EXPECT_EQ(CB_Dialog(dialog).GetEventID(), dialog.GetEventID());
}

TEST(ProgressFlattened, DamageChangesNothing) {
    CB_Dialog dialog("start");
    const std::uint32_t id = dialog.GetEventID();
    for (const std::string_view content : {std::string_view(""), {"\1"}, {"\0\0", 2}, {"\5\0targ", 6}, {"\xFF\xFF"}}) {
        Bytes file{std::string(content)};
        dialog.UnflattenMe(&file);
        EXPECT_EQ(dialog.GetEventID(), id) << content;
    }
    dialog.UnflattenMe(nullptr);
    EXPECT_EQ(dialog.GetEventID(), id);
}

}  // namespace
}  // namespace dorvutil
