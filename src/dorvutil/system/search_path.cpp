#include "dorvutil/system/search_path.h"

#include <cstdlib>
#include <cstring>

#include "dorvutil/platform/stack_trace.h"

namespace dorvutil {
namespace {

// The public symbol server of a deployment; there is none by default.
constexpr char kSymbolServer[] = "";

}  // namespace

SearchPath::SearchPath(const char* userPath) {
    m_text[0] = '\0';
    if (userPath) AddPlace({userPath});
    AddPlace({"."});
    char folder[sizeof m_text];
    if (platform::CurrentFolder(folder, sizeof folder)) AddPlace({folder});
    if (platform::ProgramFolder(folder, sizeof folder)) AddPlace({folder});
    AddVariable("_NT_SYMBOL_PATH");
    AddVariable("_NT_ALTERNATE_SYMBOL_PATH");
    AddVariable("SYSTEMROOT");
    AddVariable("SYSTEMROOT", "\\system32");
    const char* const drive = std::getenv("SYSTEMDRIVE");
    AddPlace({"SRV*", drive ? drive : "c:", "\\websymbols*", kSymbolServer});
}

void SearchPath::AddVariable(const char* name, const char* rest) {
    if (const char* const value = std::getenv(name)) AddPlace({value, rest});
}

void SearchPath::AddPlace(std::initializer_list<const char*> parts) {
    std::size_t size = m_size;
    if (size > kRoom) return;
    for (const char* const part : parts) {
        const std::size_t length = std::strlen(part);
        if (length > kRoom - size) {
            m_text[m_size] = '\0';
            return;
        }
        std::memcpy(m_text + size, part, length);
        size += length;
    }
    m_text[size] = ';';
    m_text[size + 1] = '\0';
    m_size = size + 1;
}

}  // namespace dorvutil
