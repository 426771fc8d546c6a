#include "place_index.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "library_quality.h"
#include "text_fold.h"

namespace roadlyn {
namespace {

// The library grades sanitized texts up to this many bytes only; longer ones are graded by the library itself.
constexpr std::size_t kMaxGradedBytes = 254;

// A range of suffixes with at least one for every so many rows is dense: scanning rows in order soon meets enough.
constexpr std::size_t kDenseRows = 8;

// Building: rows between two reports, and the share of making the texts in the whole.
constexpr std::uint32_t kRowsPerReport = 4096;
constexpr unsigned kTextPermille = 300;

// How many rows are looked at between two questions whether to stop.
constexpr std::size_t kRowsPerPoll = 1024;

// In the order of PlaceIndex::Grade; the library has no quality 3.
constexpr std::array<std::uint32_t, 6> kQualityOfGrade = {6, 5, 4, 2, 1, 0};

// As std::string_view::find, which is slow on short needles.
std::size_t FindText(std::string_view text, std::string_view needle) {
    const void* const found = ::memmem(text.data(), text.size(), needle.data(), needle.size());
    return found == nullptr ? std::string_view::npos
                            : static_cast<std::size_t>(static_cast<const char*>(found) - text.data());
}

bool IsWordBreak(char c) { return c == ' ' || c == '-' || c == '.'; }

bool IsKeptBySanitizing(char c) {
    return static_cast<unsigned char>(c) >= 0x80 || (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') ||
           (c >= 'A' && c <= 'Z');
}

}  // namespace

PlaceIndex::Query::Query(std::string_view input)
    : lower(LowerText(input)), sanitized(SanitizedText(lower)), folded(FoldedText(lower)) {}

// Building -----------------------------------------------------------------------------------------------------------

bool PlaceIndex::Build(const PlaceTable& places, const ProgressFunction& progress) {
    *this = PlaceIndex();
    SuffixGroups plain;
    SuffixGroups accented;
    if (!AddTexts(places, plain, accented, progress) || !SortGroups(plain, progress)) {
        *this = PlaceIndex();
        return false;
    }
    SplitByPosition(plain, places);
    for (std::vector<Suffix>& group : accented) {
        SortSuffixes(m_folded, group);
        for (const Suffix& suffix : group) m_accented.Add(suffix);
    }
    m_accented.Shrink();
    m_marks.assign((places.Count() + 63) / 64, 0);
    return true;
}

bool PlaceIndex::AddTexts(const PlaceTable& places, SuffixGroups& plain, SuffixGroups& accented,
                          const ProgressFunction& progress) {
    const auto addSuffixes = [](SuffixGroups& to, std::string_view text, std::uint32_t row) {
        for (std::size_t i = 0; i < text.size(); i += CharacterLength(text, i)) {
            to[static_cast<unsigned char>(text[i])].push_back(
                {SuffixKey(text.substr(i)), row, static_cast<std::uint32_t>(i)});
        }
    };
    for (std::uint32_t row = 0; row < places.Count(); ++row) {
        if (row % kRowsPerReport == 0 &&
            !progress(static_cast<unsigned>(std::uint64_t{row} * kTextPermille / places.Count()))) {
            return false;
        }
        const std::string lower = LowerText(places.Name(row));
        const std::string sanitized = SanitizedText(lower);
        const std::string folded = FoldedText(lower);
        m_anyLong = m_anyLong || sanitized.size() > kMaxGradedBytes;
        m_lower.Add(lower);
        m_sanitized.Add(sanitized);
        m_folded.Add(folded);
        addSuffixes(plain, sanitized, row);
        if (folded != sanitized) addSuffixes(accented, folded, row);
    }
    return true;
}

bool PlaceIndex::SortGroups(SuffixGroups& groups, const ProgressFunction& progress) const {
    std::size_t all = 0;
    for (const std::vector<Suffix>& group : groups) all += group.size();
    std::size_t sorted = 0;
    for (std::vector<Suffix>& group : groups) {
        if (group.empty()) continue;
        if (!progress(kTextPermille + static_cast<unsigned>(sorted * (1000 - kTextPermille) / all))) return false;
        SortSuffixes(m_sanitized, group);
        sorted += group.size();
    }
    return true;
}

// A suffix of the sanitized text starts a word when the library would say so of the same letter in the name.
void PlaceIndex::SplitByPosition(const SuffixGroups& plain, const PlaceTable& places) {
    std::vector<bool> startsWord(m_sanitized.All().size());
    const auto position = [this](std::uint32_t row, std::size_t offset) {
        return static_cast<std::size_t>(m_sanitized.Row(row).data() - m_sanitized.All().data()) + offset;
    };
    for (std::uint32_t row = 0; row < places.Count(); ++row) {
        const std::string_view lower = m_lower.Row(row);
        std::size_t kept = 0;
        for (std::size_t i = 0; i < lower.size(); ++i) {
            if (!IsKeptBySanitizing(lower[i])) continue;
            startsWord[position(row, kept)] = i > 0 && IsWordBreak(lower[i - 1]);
            ++kept;
        }
    }
    std::size_t count = 0;
    for (const std::vector<Suffix>& group : plain) count += group.size();
    m_insides.Reserve(count);
    m_starts.Reserve(places.Count());
    for (const std::vector<Suffix>& group : plain) {
        for (const Suffix& suffix : group) {
            m_insides.Add(suffix);
            if (suffix.offset == 0) m_starts.Add(suffix);
            if (startsWord[position(suffix.row, suffix.offset)]) m_words.Add(suffix);
        }
    }
    m_words.Shrink();
}

std::size_t PlaceIndex::MemoryBytes() const {
    return m_lower.MemoryBytes() + m_sanitized.MemoryBytes() + m_folded.MemoryBytes() + m_starts.MemoryBytes() +
           m_words.MemoryBytes() + m_insides.MemoryBytes() + m_accented.MemoryBytes() +
           m_marks.capacity() * sizeof(m_marks[0]);
}

// One row ------------------------------------------------------------------------------------------------------------

bool PlaceIndex::Matches(std::uint32_t row, std::string_view input) const {
    const Query query(input);
    return query.folded.empty() ? m_lower.Row(row).find(query.lower) != std::string_view::npos
                                : m_folded.Row(row).find(query.folded) != std::string_view::npos;
}

std::uint32_t PlaceIndex::Quality(std::uint32_t row, std::string_view input) const {
    return kQualityOfGrade[GradeOf(row, Query(input))];
}

PlaceIndex::Grade PlaceIndex::GradeOf(std::uint32_t row, const Query& query) const {
    const std::string_view lower = m_lower.Row(row);
    const std::string_view sanitized = m_sanitized.Row(row);
    if (sanitized.size() > kMaxGradedBytes || query.sanitized.size() > kMaxGradedBytes) {
        const std::uint32_t quality = LibraryMatchQuality(query.lower, lower);
        const auto* const found = std::find(kQualityOfGrade.begin(), kQualityOfGrade.end(), quality);
        return static_cast<Grade>(found - kQualityOfGrade.begin());
    }
    const std::size_t at = FindText(lower, query.lower);
    if (at == 0) return kPrefix;
    const std::size_t sanitizedAt = sanitized.empty() ? std::string_view::npos : FindText(sanitized, query.sanitized);
    if (sanitizedAt == 0) return kSanitizedPrefix;
    if (at != std::string_view::npos) return IsWordBreak(lower[at - 1]) ? kWordStart : kInside;
    return sanitizedAt != std::string_view::npos ? kSanitizedInside : kFolded;
}

// Rows of a range ----------------------------------------------------------------------------------------------------

// Marking the rows of a range and reading the marks gives them in order and once each.
void PlaceIndex::Mark(const SuffixList& list, std::pair<std::size_t, std::size_t> range) {
    const std::uint32_t* const rows = list.Rows();
    for (std::size_t i = range.first; i < range.second; ++i) {
        m_marks[rows[i] / 64] |= std::uint64_t{1} << (rows[i] % 64);
    }
}

bool PlaceIndex::IsDense(std::pair<std::size_t, std::size_t> range) const {
    return (range.second - range.first) * kDenseRows >= Count();
}

template <class Visit>
void PlaceIndex::VisitMarked(const CancelFunction& canceled, Visit visit) {
    bool go = true;
    std::size_t visited = 0;
    for (std::size_t word = 0; word < m_marks.size(); ++word) {
        std::uint64_t bits = m_marks[word];
        m_marks[word] = 0;
        for (; go && bits != 0; bits &= bits - 1) {
            go = visit(static_cast<std::uint32_t>(word * 64 + static_cast<std::size_t>(std::countr_zero(bits))));
            if (++visited % kRowsPerPoll == 0 && canceled()) go = false;
        }
    }
}

template <class Visit>
void PlaceIndex::VisitScanned(const TextBlock& texts, std::string_view needle, const CancelFunction& canceled,
                              Visit visit) {
    const std::string_view all = texts.All();
    std::uint32_t row = 0;
    std::size_t visited = 0;
    for (std::size_t from = 0; row < texts.Count();) {
        const std::size_t found = FindText(all.substr(from), needle);
        if (found == std::string_view::npos) return;
        row = texts.RowAt(from + found, row);
        if (!visit(row) || (++visited % kRowsPerPoll == 0 && canceled()) || ++row == texts.Count()) return;
        from = static_cast<std::size_t>(texts.Row(row).data() - all.data()) - 1;  // the line feed before the next row
    }
}

// Searching ----------------------------------------------------------------------------------------------------------

void PlaceIndex::Search(std::string_view input, std::size_t limit, ResultOrder order, const CancelFunction& canceled,
                        std::vector<PlaceHit>& hits) {
    hits.clear();
    if (limit == 0 || Count() == 0) return;
    m_limit = limit;
    for (auto& rows : m_found) rows.clear();
    const Query query(input);
    if (query.folded.empty() && query.lower.find('\n') != std::string::npos) return;  // in no name
    if (order == ResultOrder::RelevanceOnly) {
        SearchByRelevance(query, canceled);
        std::vector<std::uint32_t>& rows = m_found[kPrefix];
        for (const std::uint32_t row : rows) hits.push_back({row, kQualityOfGrade[GradeOf(row, query)]});
        return;
    }
    if (query.folded.empty()) {
        SearchAsItStands(query);
    } else if (query.sanitized.size() > kMaxGradedBytes) {
        VisitScanned(m_folded, query.folded, canceled, [&](std::uint32_t row) {
            Keep(GradeOf(row, query), row);
            return true;
        });
    } else {
        SearchByQuality(query, canceled);
    }
    Collect(hits);
}

// Rows found of a grade or a better one.
std::size_t PlaceIndex::Found(Grade worst) const {
    std::size_t count = 0;
    for (std::size_t grade = 0; grade <= worst; ++grade) count += m_found[grade].size();
    return count;
}

void PlaceIndex::Collect(std::vector<PlaceHit>& hits) const {
    for (std::size_t grade = 0; grade < kGrades; ++grade) {
        for (const std::uint32_t row : m_found[grade]) {
            if (hits.size() == m_limit) return;
            hits.push_back({row, kQualityOfGrade[grade]});
        }
    }
}

// Grade by grade, from the list that has all rows of a grade; each step is left as soon as enough rows of its grade or
// a better one are known, and takes down no grade that a later step has to complete.
void PlaceIndex::SearchByQuality(const Query& query, const CancelFunction& canceled) {
    Mark(m_starts, m_starts.Find(m_sanitized, query.sanitized));
    VisitMarked(canceled, [&](std::uint32_t row) {
        Keep(GradeOf(row, query), row);
        return m_found[kPrefix].size() < m_limit;
    });
    if (Found(kSanitizedPrefix) >= m_limit || canceled()) return;

    // An input that begins with punctuation may start a word where its first letter does not.
    const auto letter = std::find_if(query.lower.begin(), query.lower.end(), IsKeptBySanitizing);
    const bool wordsApart = letter == query.lower.begin() || IsWordBreak(letter[-1]);
    if (wordsApart) {
        Mark(m_words, m_words.Find(m_sanitized, query.sanitized));
        VisitMarked(canceled, [&](std::uint32_t row) {
            if (GradeOf(row, query) == kWordStart) Keep(kWordStart, row);
            return Found(kWordStart) < m_limit;
        });
        if (Found(kWordStart) >= m_limit || canceled()) return;
    }

    const auto keepInside = [&](std::uint32_t row) {
        const Grade grade = GradeOf(row, query);
        if (grade == kInside || grade == kSanitizedInside || (grade == kWordStart && !wordsApart)) Keep(grade, row);
        return Found(wordsApart ? kInside : kWordStart) < m_limit;
    };
    const auto inside = m_insides.Find(m_sanitized, query.sanitized);
    if (IsDense(inside)) {
        VisitScanned(m_sanitized, query.sanitized, canceled, keepInside);
    } else {
        Mark(m_insides, inside);
        VisitMarked(canceled, keepInside);
    }
    if (Found(kSanitizedInside) >= m_limit || canceled()) return;

    if (query.folded != query.sanitized || m_anyLong) Mark(m_insides, m_insides.Find(m_sanitized, query.folded));
    Mark(m_accented, m_accented.Find(m_folded, query.folded));
    VisitMarked(canceled, [&](std::uint32_t row) {
        if (GradeOf(row, query) == kFolded) Keep(kFolded, row);
        return Found(kFolded) < m_limit;
    });
}

// Inputs without a letter or digit: rare, and too poor in information for a list.
void PlaceIndex::SearchAsItStands(const Query& query) {
    const auto go = [] { return false; };
    if (!query.sanitized.empty()) {  // apostrophes and marks beyond ASCII: few names have them
        VisitScanned(m_lower, query.lower, go, [&](std::uint32_t row) {
            Keep(GradeOf(row, query), row);
            return m_found[kPrefix].size() < m_limit;
        });
        return;
    }
    VisitScanned(m_lower, "\n" + query.lower, go, [&](std::uint32_t row) {
        Keep(kPrefix, row);
        return m_found[kPrefix].size() < m_limit;
    });
    if (m_found[kPrefix].size() >= m_limit) return;
    VisitScanned(m_lower, query.lower, go, [&](std::uint32_t row) {
        const Grade grade = GradeOf(row, query);
        if (grade != kPrefix) Keep(grade, row);
        return Found(kSanitizedPrefix) < m_limit;
    });
}

void PlaceIndex::SearchByRelevance(const Query& query, const CancelFunction& canceled) {
    const auto keep = [&](std::uint32_t row) {
        Keep(kPrefix, row);
        return m_found[kPrefix].size() < m_limit;
    };
    if (query.folded.empty()) {
        VisitScanned(m_lower, query.lower, canceled, keep);
        return;
    }
    const auto plain = m_insides.Find(m_sanitized, query.folded);
    if (IsDense(plain)) {
        VisitScanned(m_folded, query.folded, canceled, keep);
        return;
    }
    Mark(m_insides, plain);
    Mark(m_accented, m_accented.Find(m_folded, query.folded));
    VisitMarked(canceled, keep);
}

}  // namespace roadlyn
