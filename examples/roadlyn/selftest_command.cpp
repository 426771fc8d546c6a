#include "selftest_command.h"

#include <cstdint>
#include <iostream>

#include "dorvutil/frame/registry.h"
#include "dorvutil/frame/unit_test.h"

namespace roadlyn {
namespace {

int RunSelftests() {
    const dorvutil::UnitTestMgr* const tests = dorvutil::GetORVUtilGlobals()->GetUnitTestMgr();
    if (tests == nullptr) {
        std::cerr << "roadlyn: the library has no self-tests\n";
        return 1;
    }
    std::uint32_t failed = 0;
    for (std::uint32_t i = 0; i < tests->CaseCount(); ++i) {
        const bool passed = tests->RunCase(i);
        std::cout << (passed ? "ok      " : "FAILED  ") << tests->CaseName(i) << std::endl;
        if (!passed) ++failed;
    }
    std::cout << tests->CaseCount() << " self-tests, " << failed << " failed" << std::endl;
    return failed == 0 && tests->CaseCount() > 0 && std::cout.good() ? 0 : 1;
}

}  // namespace

void AddSelftestCommand(CLI::App& app, std::function<int()>& run) {
    app.add_subcommand("selftest", "Runs the library's own tests on this machine")->callback([&run] {
        run = RunSelftests;
    });
}

}  // namespace roadlyn
