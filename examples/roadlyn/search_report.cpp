#include "search_report.h"

#include <algorithm>
#include <cstdio>

#include "country_names.h"
#include "input_error.h"
#include "text_fold.h"

namespace roadlyn {
namespace {

constexpr std::size_t kMaxTypedBytes = 1000;
constexpr std::size_t kTextLimit = 20;
constexpr std::size_t kListLimit = 100;

std::string Milliseconds(double time) {
    if (time < 0) return "-";
    char text[32];
    std::snprintf(text, sizeof(text), "%.3f", time);
    return text;
}

std::string_view KindName(std::int32_t sourceId) {
    if (sourceId == kRecentSource) return "recent";
    return sourceId == kCountrySource ? "country" : "place";
}

std::string PlainLine(const Choice& choice) {
    std::string line = Printable(choice.name);
    if (!choice.admin1.empty()) line += ", " + Printable(choice.admin1);
    if (choice.kind == kPlaceSource) {
        if (!choice.country.empty()) line += ", " + std::string(CountryName(choice.country));
        line += "  " + FormatPosition(choice);
    }
    if (choice.population > 0) {
        line += choice.kind == kPlaceSource ? "  population " : "  population of its places ";
        line += std::to_string(choice.population);
    }
    return line;
}

}  // namespace

SearchReport::SearchReport(HostSession& session, const ReportOptions& options, std::ostream& out)
    : m_session(session),
      m_options(options),
      m_limit(options.limit.value_or(options.tsv ? kListLimit : kTextLimit)),
      m_out(out) {
    if (!m_options.tsv) return;
    m_out << (m_options.keys ? "text\tsearched\tresults\tfirst_ms\tlast_ms\n"
                             : "rank\tquality\tpermanent\tsource\tname\tcountry\tadmin1\tlat_e6\tlon_e6\tpopulation\n");
}

void SearchReport::Search(const std::string& text) {
    if (!m_first && !(m_options.tsv && m_options.keys)) m_out << '\n';
    m_first = false;
    if (text.empty()) m_session.Type(text, true);
    std::string typed;
    while (typed.size() < text.size()) {
        typed.append(text, typed.size(), CharacterLength(text, typed.size()));
        m_session.Type(typed, true);
        if (m_options.keys) PrintKey(typed);
    }
    if (!m_options.keys) PrintList();
}

void SearchReport::PrintKey(const std::string& typed) {
    const SyncTimes times = m_session.Times();
    const std::size_t results = m_session.Results(kListLimit).size();
    const std::string searched = m_session.SearchedText();
    if (m_options.tsv) {
        m_out << typed << '\t' << searched << '\t' << results << '\t' << Milliseconds(times.first) << '\t'
              << Milliseconds(times.last) << '\n';
        return;
    }
    m_out << Printable(typed) << ": " << results << (results == 1 ? " result" : " results");
    if (searched != typed) m_out << " for '" << Printable(searched) << "'";
    m_out << ", first after " << Milliseconds(times.first) << " ms, last after " << Milliseconds(times.last) << " ms\n";
}

void SearchReport::PrintList() {
    const std::vector<ResultLine> lines = m_session.Results(kListLimit);
    if (m_options.tsv) {
        PrintTsvList(lines);
        return;
    }
    const std::string& typed = m_session.TypedText();
    const std::string searched = m_session.SearchedText();
    m_out << Printable(typed) << ": " << lines.size() << (lines.size() == 1 ? " result" : " results");
    if (searched != typed && !lines.empty()) {
        m_out << " for '" << Printable(searched) << "', nothing is called '" << Printable(typed) << "'";
    }
    m_out << '\n';
    for (std::size_t i = 0; i < std::min(lines.size(), m_limit); ++i) {
        char rank[32];
        std::snprintf(rank, sizeof(rank), "%3zu", i + 1);
        m_out << rank << "  " << KindName(lines[i].sourceId) << "  " << PlainLine(lines[i].choice) << '\n';
    }
}

void SearchReport::PrintTsvList(const std::vector<ResultLine>& lines) {
    for (std::size_t i = 0; i < std::min(lines.size(), m_limit); ++i) {
        const ResultLine& line = lines[i];
        const Choice& choice = line.choice;
        m_out << i + 1 << '\t' << line.quality << '\t' << (line.permanent ? 1 : 0) << '\t' << line.sourceId << '\t'
              << choice.name << '\t' << choice.country << '\t' << choice.admin1 << '\t';
        if (choice.kind == kCountrySource)
            m_out << '\t';
        else
            m_out << choice.latE6 << '\t' << choice.lonE6;
        m_out << '\t' << choice.population << '\n';
    }
}

void CheckTypedText(const std::string& text, const std::string& source, std::size_t line) {
    if (text.size() > kMaxTypedBytes) {
        throw InputError(source, line, "longer than " + std::to_string(kMaxTypedBytes) + " bytes");
    }
    if (text.find('\0') != std::string::npos) throw InputError(source, line, "NUL byte");
    if (std::any_of(text.begin(), text.end(), [](char c) { return (c >= 0 && c < 0x20) || c == 0x7F; })) {
        throw InputError(source, line, "control character");
    }
    if (FindInvalidUtf8(text) != std::string::npos) throw InputError(source, line, "invalid UTF-8");
}

std::string FormatPosition(const Choice& choice) {
    char text[48];
    std::snprintf(text, sizeof(text), "%.5f, %.5f", choice.latE6 / 1e6, choice.lonE6 / 1e6);
    return text;
}

std::string Printable(const std::string& text) {
    std::string clean;
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = CharacterLength(text, i);
        const auto lead = static_cast<unsigned char>(text[i]);
        const bool control = lead < 0x20 || lead == 0x7F ||
                             (length == 2 && lead == 0xC2 && static_cast<unsigned char>(text[i + 1]) < 0xA0);
        if (control)
            clean += '?';
        else
            clean.append(text, i, length);
        i += length;
    }
    return clean;
}

}  // namespace roadlyn
