#pragma once

#include <cstddef>
#include <istream>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "host_session.h"

namespace roadlyn {

struct ReportOptions {
    std::optional<std::size_t> limit;  ///< Most lines of a list; 20, or all with `tsv`, when not given.
    bool keys = false;                 ///< A line for each key instead of the list.
    bool tsv = false;
};

/// Types each text of `texts`, key by key, into the session and prints what the user would see in the end: the results,
/// or with `keys` a line for each key. The session is loaded.
class SearchReport {
public:
    SearchReport(HostSession& session, const ReportOptions& options, std::ostream& out);

    void Search(const std::string& text);

private:
    void PrintKey(const std::string& typed);
    void PrintList();
    void PrintTsvList(const std::vector<ResultLine>& lines);

    HostSession& m_session;
    const ReportOptions m_options;
    const std::size_t m_limit;
    std::ostream& m_out;
    bool m_first = true;
};

/// Throws InputError, with the line where `line` is not 0, unless `text` is valid UTF-8 without control characters and
/// short enough to be typed.
void CheckTypedText(const std::string& text, const std::string& source, std::size_t line);

/// Latitude and longitude in degrees, as "48.13743, 11.57549".
std::string FormatPosition(const Choice& choice);

/// The text with what a terminal could take for a command replaced by '?'.
std::string Printable(const std::string& text);

}  // namespace roadlyn
