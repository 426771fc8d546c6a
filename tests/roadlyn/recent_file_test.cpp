#include "recent_file.h"

#include <gtest/gtest.h>

#include <fstream>

#include "input_error.h"
#include "roadlyn/test_folder.h"
#include "tsv_reader.h"

namespace roadlyn {
namespace {

class RecentFile : public FolderTest {
protected:
    std::string Path() const { return At("state/recent.tsv"); }
    static Choice Named(const std::string& name) { return {kPlaceSource, name, "DE", "Bayern", -1, 2, 3}; }
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

TEST_F(RecentFile, FailedWriteLeavesTheOldFileAlone) {
    RememberChoice(Path(), Named("a"));
    const std::string before = ReadWholeFile(Path());
    {
        const FileSizeLimit tiny(10);
        EXPECT_THROW(RememberChoice(Path(), Named("b")), InputError);
    }
    EXPECT_EQ(ReadWholeFile(Path()), before);
    EXPECT_EQ(CountEntries(m_folder / "state"), 1);
}

TEST_F(RecentFile, WritingLeavesOnlyTheFileBehind) {
    RememberChoice(Path(), Named("a"));
    RememberChoice(Path(), Named("b"));
    EXPECT_EQ(CountEntries(m_folder / "state"), 1);
}

TEST(ChoiceLine, ComesBackAsItWas) {
    const Choice choice{kPlaceSource, "Saint John’s", "AG", "Saint John", 17'121'000, -61'843'290, 24'226};
    EXPECT_EQ(ParseChoice(FormatChoice(choice)), choice);
    EXPECT_THROW(ParseChoice("x"), InputError);
}

}  // namespace
}  // namespace roadlyn
