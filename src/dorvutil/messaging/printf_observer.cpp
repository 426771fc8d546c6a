#include "dorvutil/messaging/printf_observer.h"

#include <cstdio>

namespace dorvutil {
namespace {

void PrintLine(const ORVustring& line) {
    std::fwrite(line.c_str(), 1, line.length(), stdout);
    std::fputs("\n", stdout);
}

}  // namespace

PrintfObserver::PrintfObserver(const char* name, bool line1, bool line2, bool line3)
    : m_dialog(name), m_printLine1(line1), m_printLine2(line2), m_printLine3(line3) {
    m_dialog.AddObserver(this);
}

PrintfObserver::~PrintfObserver() { m_dialog.RemoveObserver(this); }

void PrintfObserver::OnProgressChanged(ProgressBarMsg what) {
    if (what == kProgressMessageLine1 && m_printLine1) PrintLine(m_dialog.GetMessageLine1());
    if (what == kProgressMessageLine2 && m_printLine2) PrintLine(m_dialog.GetMessageLine2());
    if (what == kProgressMessageLine3 && m_printLine3) PrintLine(m_dialog.GetMessageLine3());
}

}  // namespace dorvutil
