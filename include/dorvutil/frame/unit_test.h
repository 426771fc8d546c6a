#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/memory/vector.h"

/// Self-tests that travel inside the library, so that a host can check the build it was given on the machine it runs
/// on.
namespace dorvutil {

/// A registry of named self-test cases. Not synchronised.
class DORVUTIL_API UnitTestMgr {
public:
    using CaseFunction = bool (*)();  ///< True when the case holds.

    UnitTestMgr() = default;
    UnitTestMgr(const UnitTestMgr&) = delete;
    UnitTestMgr& operator=(const UnitTestMgr&) = delete;
    virtual ~UnitTestMgr();

    /// Registers the cases; called once, when the manager is installed in a StaticDataHolder.
    virtual void SetupTests() = 0;

    std::uint32_t CaseCount() const { return m_cases.Count(); }
    /// Name of case `index`, null past the end. Lives as long as the manager's owner.
    const char* CaseName(std::uint32_t index) const { return m_cases[index].name; }
    /// Runs one case; false when it fails or does not exist.
    bool RunCase(std::uint32_t index) const;

protected:
    /// `name` is kept, not copied. False when memory ran out.
    bool AddCase(const char* name, CaseFunction run);

private:
    struct Case {
        const char* name;
        CaseFunction run;
    };
    TVector<Case> m_cases;
};

/// The library's own cases: its containers and pools.
class DORVUTIL_API DorvutilUnitTestMgr : public UnitTestMgr {
public:
    void SetupTests() override;
};

}  // namespace dorvutil
