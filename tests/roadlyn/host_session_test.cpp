#include "host_session.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

#include "recent_file.h"

namespace roadlyn {
namespace {

namespace fs = std::filesystem;

class Session : public testing::Test {
protected:
    Session() : m_folder(fs::temp_directory_path() / ("roadlyn_session_" + std::to_string(::getpid()))) {
        fs::create_directories(m_folder);
    }
    ~Session() override { fs::remove_all(m_folder); }

    SessionOptions OptionsFor(const std::string& rows) const {
        const std::string places = (m_folder / "places.tsv").string();
        std::ofstream(places) << "name\tcountry\tadmin1\tlat_e6\tlon_e6\tpopulation\n" << rows;
        SessionOptions options;
        options.placesPath = places;
        options.recentPath = (m_folder / "recent.tsv").string();
        return options;
    }

    static std::string NamesAndRegions(HostSession& session) {
        std::string text;
        for (const ResultLine& line : session.Results(100)) {
            text += std::to_string(line.sourceId) + " " + line.choice.name + "/" + line.choice.admin1 + " ";
        }
        return text;
    }

    const fs::path m_folder;
};

constexpr char kSpringfields[] =
    "Springfield\tUS\tMissouri\t1\t1\t160000\n"
    "Springfield\tUS\tIllinois\t2\t2\t110000\n"
    "Springfield\tUS\tIllinois\t3\t3\t110000\n"
    "Springe\tDE\tLower Saxony\t4\t4\t30000\n"
    "Luxembourg\tLU\tLuxembourg\t5\t5\t80000\n";

TEST_F(Session, PlacesOfOneNameAndRegionAreAllShown) {
    HostSession session(OptionsFor(kSpringfields));
    session.WaitUntilLoaded();
    session.Type("springf", true);
    EXPECT_EQ(NamesAndRegions(session), "2 Springfield/Missouri 2 Springfield/Illinois 2 Springfield/Illinois ");
}

// The recent entry gives its place to what was chosen, not to the larger namesake.
TEST_F(Session, ChosenPlaceStandsWhereItsRecentEntryStood) {
    const SessionOptions options = OptionsFor(kSpringfields);
    RememberChoice(options.recentPath, {kCountrySource, "Luxembourg", "LU", "", 0, 0, 80000});
    RememberChoice(options.recentPath, {kPlaceSource, "Springfield", "US", "Illinois", 3, 3, 110000});
    RememberChoice(options.recentPath, {kPlaceSource, "Springs", "ZA", "Gauteng", 9, 9, 186000});
    HostSession session(options);
    session.WaitUntilLoaded();
    session.Type("spring", true);
    EXPECT_EQ(NamesAndRegions(session),
              "11 Springs/Gauteng 2 Springfield/Illinois 2 Springfield/Missouri 2 Springfield/Illinois "
              "2 Springe/Lower Saxony ");
    EXPECT_EQ(session.Results(2)[1].choice.latE6, 3);
    session.Type("lux", true);
    EXPECT_EQ(NamesAndRegions(session), "3 Luxembourg/ 2 Luxembourg/Luxembourg ");
}

TEST_F(Session, RememberedChoiceShowsWithoutAnotherKey) {
    HostSession session(OptionsFor(kSpringfields));
    session.WaitUntilLoaded();
    session.Type("springf", true);
    const Choice smallest = session.Results(100)[2].choice;
    session.Remember(smallest);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (NamesAndRegions(session) != "2 Springfield/Illinois 2 Springfield/Missouri 2 Springfield/Illinois ") {
        ASSERT_LT(std::chrono::steady_clock::now(), deadline) << NamesAndRegions(session);
        std::this_thread::yield();
    }
    EXPECT_EQ(session.Results(1)[0].choice, smallest);
    EXPECT_EQ(ReadRecentFile((m_folder / "recent.tsv").string()).size(), 1u);
}

TEST_F(Session, LettersAreTakenOffUnlessExact) {
    SessionOptions options = OptionsFor(kSpringfields);
    for (const bool exact : {false, true}) {
        options.exact = exact;
        HostSession session(options);
        session.WaitUntilLoaded();
        session.Type("springexx", true);
        EXPECT_EQ(NamesAndRegions(session), exact ? "" : "2 Springe/Lower Saxony ");
        EXPECT_EQ(session.SearchedText(), exact ? "springexx" : "springe");
    }
}

TEST_F(Session, FailedLoadReachesTheMainThread) {
    const SessionOptions options = OptionsFor("Springfield\tUS\tMissouri\t1\tx\t160000\n");
    HostSession session(options);
    try {
        session.WaitUntilLoaded();
        FAIL() << "loaded";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(error.what(), options.placesPath + ":2: lon_e6 'x' is not a whole number");
    }
    session.Type("spring", true);
    EXPECT_TRUE(session.Results(100).empty());
}

TEST_F(Session, EndsWhileLoadingAndSearching) {
    SessionOptions options = OptionsFor("");
    options.placesPath = DORVUTIL_DATA_DIR "/places.tsv";
    for (int round = 0; round < 5; ++round) {
        HostSession session(options);
        session.Type("a", false);
        if (round > 2) session.WaitUntilLoaded();
        session.Type("b", false);
    }
}

}  // namespace
}  // namespace roadlyn
