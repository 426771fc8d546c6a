#include "copy_files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "copy_progress.h"
#include "input_error.h"
#include "roadlyn/test_folder.h"
#include "tsv_reader.h"

namespace roadlyn {
namespace {

namespace fs = std::filesystem;

class CopyFiles : public FolderTest {
protected:
    CopyFiles() {
        fs::create_directories(m_folder / "src" / "inner" / "empty");
        Write("src/a", std::string(3 * kCopyBlock + 5, 'a'));
        Write("src/inner/b\\c", "odd name");
        Write("src/inner/none", "");
        Write("old", "what was there before");
    }

    CopyResult Run(const CopyPlan& plan) { return RunCopy(plan, m_dialog); }
    std::string ErrorOf(const std::string& source, const std::string& target, bool tree) {
        try {
            Run(PlanCopy(source, target, tree));
        } catch (const InputError& error) {
            return error.what();
        }
        return "no error";
    }

    dorvutil::CB_Dialog m_dialog;
};

// Cancels when the dialog has made so many steps.
struct CancelAt : dorvutil::ProgressObserver {
    CancelAt(dorvutil::CB_Dialog& dialog, int step) : m_dialog(dialog), m_step(step) { m_dialog.AddObserver(this); }
    ~CancelAt() override { m_dialog.RemoveObserver(this); }
    void OnProgressChanged(dorvutil::ProgressBarMsg what) override {
        if (what == dorvutil::kProgressStep && m_dialog.GetCurrStep() == m_step) m_dialog.Cancel();
    }
    void ForceUpdate() override {}

    dorvutil::CB_Dialog& m_dialog;
    const int m_step;
};

TEST_F(CopyFiles, FileReplacesTheOldOneAndMakesAllItsSteps) {
    EXPECT_EQ(Run(PlanCopy(At("src/a"), At("old"), false)).files, 1u);
    EXPECT_EQ(ReadWholeFile(At("old")), ReadWholeFile(At("src/a")));
    EXPECT_EQ(m_dialog.GetNumSteps(), 5);
    EXPECT_EQ(m_dialog.GetCurrStep(), 5);
    Run(PlanCopy(At("src/inner/none"), At("src/inner/empty"), false));
    EXPECT_TRUE(fs::exists(At("src/inner/empty/none")));
}

TEST_F(CopyFiles, TreeComesWithEmptyFilesFoldersAndOddNames) {
    fs::create_directory_symlink(m_folder, At("src/loop"));
    const CopyPlan plan = PlanCopy(At("src"), At("copy"), true);
    EXPECT_EQ(plan.skipped, 1u);
    EXPECT_EQ(Run(plan).files, 3u);
    EXPECT_EQ(ReadWholeFile(At("copy/a")), ReadWholeFile(At("src/a")));
    EXPECT_EQ(ReadWholeFile(At("copy/inner/b\\c")), "odd name");
    EXPECT_TRUE(fs::is_directory(At("copy/inner/empty")));
    EXPECT_TRUE(fs::is_empty(At("copy/inner/none")));
    EXPECT_FALSE(fs::exists(At("copy/loop")));
}

TEST_F(CopyFiles, CancellationLeavesTheBlocksCopiedSoFar) {
    const CopyPlan plan = PlanCopy(At("src"), At("copy"), true);
    {
        const CancelAt cancel(m_dialog, 2);
        const CopyResult result = Run(plan);
        EXPECT_TRUE(result.cancelled);
        EXPECT_EQ(result.files, 0u);
        EXPECT_EQ(result.incomplete, At("copy/a"));
    }
    EXPECT_EQ(fs::file_size(At("copy/a")), 2 * kCopyBlock);
    EXPECT_FALSE(fs::exists(At("copy/inner/none")));
    const CancelAt between(m_dialog, 5);
    const CopyResult result = Run(plan);
    EXPECT_TRUE(result.cancelled);
    EXPECT_EQ(result.files, 1u);
    EXPECT_EQ(result.incomplete, "");
}

TEST_F(CopyFiles, WhatCannotBeIsSaidAndTheOldTargetStays) {
    const struct {
        const char* source;
        const char* target;
        bool tree;
        const char* reason;
    } kCases[] = {
        {"missing", "old", false, "missing: does not exist"},
        {"missing", "old", true, "missing: does not exist"},
        {"src", "copy", false, "src: is a folder; --dir copies folders"},
        {"old", "copy", true, "old: is no folder"},
        {"src", "old", true, "old: is no folder"},
        {"src", "src/inner/copy", true, "src/inner/copy: lies inside the folder to be copied"},
        {"src/", "src", true, "src: lies inside the folder to be copied"},
        {"old", "old", false, "old: is the file to be copied itself"},
        {"src/../old", "src/inner/../../old", false, "src/inner/../../old: is the file to be copied itself"},
        {"old", "new/", false, "new/: is no file name"},
        {"src/a", "old/x", false, "old/x: cannot be written: Not a directory"},
    };
    for (const auto& c : kCases) {
        SCOPED_TRACE(c.reason);
        EXPECT_EQ(ErrorOf(At("") + c.source, At("") + c.target, c.tree), At("") + c.reason);
        EXPECT_EQ(ReadWholeFile(At("old")), "what was there before");
    }
}

TEST_F(CopyFiles, FailedCopyLeavesNoHalfFile) {
    std::string error;
    {
        const FileSizeLimit small(kCopyBlock + 1);
        error = ErrorOf(At("src/a"), At("half"), false);
    }
    EXPECT_EQ(error, At("half: cannot be written: reading ") + At("src/a or writing failed"));
    EXPECT_FALSE(fs::exists(At("half")));
    EXPECT_NE(ErrorOf(At("old"), "/dev/full", false), "no error");
    EXPECT_TRUE(fs::exists("/dev/full"));
}

TEST(CopyLine, FitsTheTerminal) {
    const CopyFigures figures{50, 1536, 3 * 1024, 0.5, 7};
    EXPECT_EQ(CopyLine(figures, 60), " 50% [#######--------]  1.5 KB of 3.0 KB  3.0 KB/s  7 s left");
    EXPECT_EQ(CopyLine(figures, 30), " 50%  1.5 KB of 3.0 KB  3.0 KB");
    EXPECT_EQ(CopyLine({}, 20), "  0%  0 B of 0 B");
    EXPECT_EQ(CopyLine(figures, -1), "");
    EXPECT_EQ(FormatBytes(5ull << 30), "5.0 GB");
}

TEST_F(CopyFiles, BarCountsBytesAcrossFiles) {
    const CopyPlan plan = PlanCopy(At("src"), At("copy"), true);
    std::ostringstream out;
    {
        const CopyProgressBar bar(m_dialog, plan, out, [] { return 200; });
        Run(plan);
    }
    const std::string text = out.str();
    const std::string last = text.substr(text.rfind('\r'));
    EXPECT_NE(last.find("100% [########################################]  768.0 KB of 768.0 KB"), std::string::npos)
        << last;
    EXPECT_TRUE(last.ends_with("\033[K\n"));
}

}  // namespace
}  // namespace roadlyn
