#include "dorvutil/platform/pages.h"

#include <gtest/gtest.h>

#include <cstring>

#include "dorvutil/platform/host.h"

namespace dorvutil::platform {
namespace {

TEST(Pages, ComeZeroedEachTimeAndAreCounted) {
    const std::size_t page = PageSize(), before = CommittedBytes();
    auto* const base = static_cast<unsigned char*>(ReserveRange(4 * page));
    for (int turn = 0; turn < 2; ++turn) {
        ASSERT_TRUE(CommitPages(base + page, 2 * page));
        EXPECT_EQ(CommittedBytes(), before + 2 * page);
        for (std::size_t i = page; i < 3 * page; ++i) ASSERT_EQ(base[i], 0);
        std::memset(base + page, 0xA5, 2 * page);
        EXPECT_TRUE(DecommitPages(base + page, 2 * page));
        EXPECT_EQ(CommittedBytes(), before);
    }
    ReleaseRange(base, 4 * page);
}

TEST(Pages, KeepTheirContentWhenTheyMove) {
    const std::size_t page = PageSize(), before = CommittedBytes();
    auto* pages = static_cast<unsigned char*>(MapPages(page));
    std::memset(pages, 0xA5, page);
    pages = static_cast<unsigned char*>(RemapPages(pages, page, 512 * page));
    for (std::size_t i = 0; i < 2 * page; ++i) ASSERT_EQ(pages[i], i < page ? 0xA5 : 0);
    RefusePages(true);
    EXPECT_EQ(RemapPages(pages, 512 * page, 513 * page), nullptr);
    EXPECT_EQ(MapPages(page), nullptr);
    EXPECT_FALSE(CommitPages(pages, page));
    RefusePages(false);
    EXPECT_EQ(CommittedBytes(), before + 512 * page);
    UnmapPages(pages, 512 * page);
    EXPECT_EQ(CommittedBytes(), before);
}

}  // namespace
}  // namespace dorvutil::platform
