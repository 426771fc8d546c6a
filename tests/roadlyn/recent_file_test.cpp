#include "recent_file.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>

#include "input_error.h"
#include "tsv_reader.h"

namespace roadlyn {
namespace {

namespace fs = std::filesystem;

class RecentFile : public testing::Test {
protected:
    RecentFile() : m_folder(fs::temp_directory_path() / ("roadlyn_" + std::to_string(::getpid()))) {
        fs::create_directories(m_folder);
    }
    ~RecentFile() override { fs::remove_all(m_folder); }

    std::string Path() const { return (m_folder / "state" / "recent.tsv").string(); }
    static Choice Named(const std::string& name) { return {kPlaceSource, name, "DE", "Bayern", -1, 2, 3}; }

    const fs::path m_folder;
};

TEST_F(RecentFile, NewestComesFirstAndOnce) {
    EXPECT_TRUE(ReadRecentFile(Path()).empty());
    const Choice country{kCountrySource, "Côte d'Ivoire", "CI", "", 0, 0, 7};
    Choice grown = Named("a");
    grown.population = 4;
    for (const Choice& choice : {Named("a"), country, Named("b"), grown}) RememberChoice(Path(), choice);
    EXPECT_EQ(ReadRecentFile(Path()), (std::vector<Choice>{grown, Named("b"), country}));
}

TEST_F(RecentFile, KeepsOnlyTheLatest) {
    for (std::size_t i = 0; i < kMaxRecentChoices + 3; ++i) RememberChoice(Path(), Named(std::to_string(i)));
    const std::vector<Choice> choices = ReadRecentFile(Path());
    ASSERT_EQ(choices.size(), kMaxRecentChoices);
    EXPECT_EQ(choices.back().name, "3");
}

TEST_F(RecentFile, DamagedFileIsReportedAndLeftAlone) {
    RememberChoice(Path(), Named("a"));
    std::ofstream(Path(), std::ios::app) << "place\tb\tDE\n";
    const std::string before = ReadWholeFile(Path());
    EXPECT_THROW(ReadRecentFile(Path()), InputError);
    EXPECT_THROW(RememberChoice(Path(), Named("c")), InputError);
    EXPECT_EQ(ReadWholeFile(Path()), before);
}

// The system refuses to let the new file grow, as a full disk would.
TEST_F(RecentFile, FailedWriteLeavesTheOldFileAlone) {
    RememberChoice(Path(), Named("a"));
    const std::string before = ReadWholeFile(Path());
    rlimit limit{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &limit), 0);
    const rlimit tiny{10, limit.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &tiny), 0);
    EXPECT_THROW(RememberChoice(Path(), Named("b")), InputError);
    ::setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(ReadWholeFile(Path()), before);
    const auto entries = fs::directory_iterator(fs::path(Path()).parent_path());
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 1);
}

TEST_F(RecentFile, WritingLeavesOnlyTheFileBehind) {
    RememberChoice(Path(), Named("a"));
    RememberChoice(Path(), Named("b"));
    const auto entries = fs::directory_iterator(fs::path(Path()).parent_path());
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 1);
}

TEST(ChoiceLine, ComesBackAsItWas) {
    const Choice choice{kPlaceSource, "Saint John’s", "AG", "Saint John", 17'121'000, -61'843'290, 24'226};
    EXPECT_EQ(ParseChoice(FormatChoice(choice)), choice);
    EXPECT_THROW(ParseChoice("x"), InputError);
}

}  // namespace
}  // namespace roadlyn
