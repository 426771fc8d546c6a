#include "dorvutil/frame/unit_test.h"

namespace dorvutil {

UnitTestMgr::~UnitTestMgr() = default;

bool UnitTestMgr::RunCase(std::uint32_t index) const { return index < m_cases.Count() && m_cases[index].run(); }

bool UnitTestMgr::AddCase(const char* name, CaseFunction run) {
    const Case added{name, run};
    return m_cases.Add(&added, 1) >= 0;
}

}  // namespace dorvutil
