#pragma once

#include "dorvutil/concurrency/locks.h"

/// What the crash reports of the process share.
namespace dorvutil {

/// Lives as long as the library is loaded, among its static objects. Its construction reads the user's symbol path,
/// opens the critical section for use, and has the crashes of library threads reported.
class CrashLogSetup {
public:
    CrashLogSetup();
    ~CrashLogSetup();
    CrashLogSetup(const CrashLogSetup&) = delete;
    CrashLogSetup& operator=(const CrashLogSetup&) = delete;
};

/// Held while a report is written; null before the set-up.
const critSec* CrashLogSection();

/// The contents of "./orvsymbolpath.txt" at library start; null without the file, and after unload. Stays as it is
/// while the section is held.
const char* UserSymbolPath();

}  // namespace dorvutil
