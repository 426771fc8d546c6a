#include "dorvutil/frame/dynamic_library.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "dorvutil/frame/library_hash.h"

namespace dorvutil {
namespace {

bool IsMapped(const std::string& file) {
    std::ifstream maps("/proc/self/maps");
    return std::string(std::istreambuf_iterator<char>(maps), {}).find("/" + file) != std::string::npos;
}

HMODULE Load(CLoadedLibraryHash& table, const std::string& name) {
    HMODULE module = nullptr;
    table.Load(name.c_str(), false, module);
    return module;
}

TEST(LoadedLibraries, AreLoadedOnceForAllThreadsCleanedUpAndUnloaded) {
    int cleanups = 0;
    {
        CLoadedLibraryHash table;
        HMODULE modules[4] = {};
        std::vector<std::thread> threads;
        for (HMODULE& m : modules) threads.emplace_back([&] { m = Load(table, "dyna_first"); });
        for (auto& thread : threads) thread.join();
        HMODULE const module = modules[0];
        ASSERT_NE(module, nullptr);
        EXPECT_EQ(std::count(modules, modules + 4, module), 4);
        EXPECT_EQ(Load(table, "DYNA_First"), module);
        void* const count = GetDllFunctionAddress(module, ORVwstring(u"dyna_first_count"));
        ASSERT_NE(count, nullptr);
        reinterpret_cast<void (*)(int*)>(count)(&cleanups);
        EXPECT_EQ(GetDllFunctionAddress(module, ORVwstring(u"no such function")), nullptr);
        EXPECT_EQ(GetDllFunctionAddress(nullptr, ORVwstring(u"dyna_first_count")), nullptr);
        EXPECT_EQ(cleanups, 0);
    }
    EXPECT_EQ(cleanups, 1);
    EXPECT_FALSE(IsMapped("libdyna_first.so"));
}

TEST(LoadedLibraries, AreFoundInTheFormsOfTheSystem) {
    const std::string folder = DORVUTIL_MODULE_DIR, cut = testing::TempDir() + "dyna_cut.so";
    char bytes[100];
    std::ifstream(folder + "/libdyna_first.so").read(bytes, sizeof bytes);
    std::ofstream(cut).write(bytes, sizeof bytes);
    const std::string found[] = {"DYNA_FIRST",  "dyna_first",           "libdyna_first.so",
                                 "Dyna_Second", folder + "/dyna_first", folder + "\\dyna_second"};
    const std::string missing[] = {
        "", "/", folder + "/", "dyna_third", "dyna_first.dll", "\xFF\xFE", cut, std::string(70'000, 'x')};
    CLoadedLibraryHash table;
    for (const std::string& name : found) EXPECT_NE(Load(table, name), nullptr) << name;
    for (const std::string& name : missing) EXPECT_EQ(Load(table, name), nullptr) << name.substr(0, 80);
    std::remove(cut.c_str());
}

// What DynaLoad, or DynaLink when a function is named, shows: one line for each message box.
TEST(DynaLoad, ReportsAsTheFlagsAsk) {
    static constexpr struct {
        const char *library, *function;
        std::uint32_t flags;
        const char* shown;
    } kCases[] = {
        {"dyna_none", nullptr, 0, ""},
        {"dyna_none", nullptr, eDynaReport, "Fatal Error: Could not locate dyna_none\n"},
        {nullptr, nullptr, eDynaReport, "Fatal Error: Internal Error\n"},
        {"dyna_forgotten", nullptr, 5, "Fatal Error: Could not locate dyna_forgotten\n"},
        {"DYNA_forgotten", nullptr, 5, ""},
        {"dyna_second", "Ulm", eDynaReport, "Fatal Error: Missing entry point \"Ulm\" in library dyna_second\n"},
        {"dyna_none", "Ulm", eDynaReport,
         "Fatal Error: Could not locate dyna_none\nFatal Error: Missing entry point \"Ulm\" in library dyna_none\n"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.library ? c.library : "null");
        testing::internal::CaptureStderr();
        void* const found =
            c.function ? DynaLink(c.library, c.function, c.flags, 0, nullptr) : DynaLoad(c.library, c.flags);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), c.shown);
        EXPECT_EQ(found, nullptr);
    }
}

TEST(DynaLink, GivesFunctionAndLibrary) {
    HMODULE module = nullptr;
    void* const answer = DynaLink("dyna_second", "dyna_second_answer", eDynaReport, 99, &module);
    ASSERT_NE(answer, nullptr);
    EXPECT_EQ(reinterpret_cast<int (*)()>(answer)(), 42);
    EXPECT_EQ(module, DynaLoad("DYNA_SECOND", 0));
    DynaUnload(module);
    EXPECT_TRUE(IsMapped("DYNA_SECOND.so"));
    EXPECT_EQ(DynaLink("dyna_none", "answer", 0, 0, &module), nullptr);
    EXPECT_EQ(module, nullptr);
}

TEST(DynaLoadDeathTest, EndsTheProcessOnRequest) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    EXPECT_EXIT(DynaLoad("dyna_none", eDynaReport | eDynaEndProcess), testing::ExitedWithCode(0),
                "Fatal Error: Could not locate dyna_none");
}

}  // namespace
}  // namespace dorvutil
