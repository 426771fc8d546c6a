#include <cstdio>

#include "dorvutil/dorvutil.h"

// Uses a piece of every layer, so that a header or symbol missing from the package fails here.
int main() {
    using namespace dorvutil;
    DependencyHolder library;
    library.AddDependency(GetORVUtilGlobals());

    const ORVustring name("Münster");
    if (SpecialChar_stricmp2(name.c_str(false), "MUNSTER") != 0) return 1;
    if (name.wString().length() != 7) return 2;

    TVector<std::uint32_t> numbers;
    const std::uint32_t answer = 42;
    numbers.Add(&answer, 1);
    if (numbers.Count() != 1) return 3;

    CB_Dialog progress;
    progress.SetNumSteps(4);
    progress.Step(1);
    if (progress.GetPercentComplete() != 25) return 4;

    std::puts("dorvutil works from its package");
    return 0;
}
