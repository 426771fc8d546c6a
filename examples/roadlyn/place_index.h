#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "place_file.h"
#include "place_table.h"
#include "suffix_list.h"

namespace roadlyn {

/// What a result list is sorted by before relevance.
enum class ResultOrder { MatchQuality, RelevanceOnly };

struct PlaceHit {
    std::uint32_t row;
    std::uint32_t quality;  ///< A MatchQuality of the library.
    bool operator==(const PlaceHit&) const = default;
};

/// Finds the places whose name contains a text, best first, without looking at all of them.
///
/// A name matches when its folded form (text_fold.h) contains the folded form of the input. An input whose folded form
/// is empty, as "" and "-", matches the names that contain it in lower case as it stands. Matches are ordered as the
/// library orders results of one source: by match quality, then as the table's rows are (its rows must be in display
/// order). Quality 0 goes to names that match by folding only, as Münster for "munster".
///
/// Built once; then one thread at a time searches it.
class PlaceIndex {
public:
    /// Answers whether a search shall stop; asked now and then.
    using CancelFunction = std::function<bool()>;

    /// Indexes the names of `places`, which is not kept. False, with the index empty, when `progress` said stop.
    bool Build(const PlaceTable& places, const ProgressFunction& progress);

    /// Puts the first `limit` matches of `input` (valid UTF-8) into `hits`. What was found so far when `canceled` says
    /// so.
    void Search(std::string_view input, std::size_t limit, ResultOrder order, const CancelFunction& canceled,
                std::vector<PlaceHit>& hits);

    /// Whether one row matches, by the definition above.
    bool Matches(std::uint32_t row, std::string_view input) const;

    /// The match quality of one row, as GetTypeAheadMatchQuality gives it for the name.
    std::uint32_t Quality(std::uint32_t row, std::string_view input) const;

    std::uint32_t Count() const { return m_lower.Count(); }
    std::size_t MemoryBytes() const;

    /// The folded names, a line feed before and after each: what a plain scan would look through.
    std::string_view FoldedNames() const { return m_folded.All(); }

private:
    struct Query {
        explicit Query(std::string_view input);
        std::string lower;
        std::string sanitized;  // of lower
        std::string folded;
    };
    enum Grade : std::size_t { kPrefix, kSanitizedPrefix, kWordStart, kInside, kSanitizedInside, kFolded, kGrades };

    /// Suffixes by their first byte, so that sorting them can tell how far it is.
    using SuffixGroups = std::array<std::vector<Suffix>, 256>;

    bool AddTexts(const PlaceTable& places, SuffixGroups& plain, SuffixGroups& accented,
                  const ProgressFunction& progress);
    bool SortGroups(SuffixGroups& groups, const ProgressFunction& progress) const;
    void SplitByPosition(const SuffixGroups& plain, const PlaceTable& places);
    Grade GradeOf(std::uint32_t row, const Query& query) const;
    std::size_t Found(Grade worst) const;
    void Keep(Grade grade, std::uint32_t row) {
        if (m_found[grade].size() < m_limit) m_found[grade].push_back(row);
    }
    void SearchByQuality(const Query& query, const CancelFunction& canceled);
    void SearchAsItStands(const Query& query);
    void SearchByRelevance(const Query& query, const CancelFunction& canceled);
    void Collect(std::vector<PlaceHit>& hits) const;

    void Mark(const SuffixList& list, std::pair<std::size_t, std::size_t> range);
    bool IsDense(std::pair<std::size_t, std::size_t> range) const;
    template <class Visit>
    void VisitMarked(const CancelFunction& canceled, Visit visit);
    template <class Visit>
    static void VisitScanned(const TextBlock& texts, std::string_view needle, const CancelFunction& canceled,
                             Visit visit);

    TextBlock m_lower;                                        // names in lower case
    TextBlock m_sanitized;                                    // those sanitized
    TextBlock m_folded;                                       // names folded
    SuffixList m_starts;                                      // whole texts of m_sanitized
    SuffixList m_words;                                       // its suffixes that start a word of the name
    SuffixList m_insides;                                     // all its suffixes
    SuffixList m_accented;                                    // suffixes of m_folded where it is different
    bool m_anyLong = false;                                   // a text that the library grades in part
    std::vector<std::uint64_t> m_marks;                       // scratch: one bit a row, clear between uses
    std::array<std::vector<std::uint32_t>, kGrades> m_found;  // scratch: rows of each grade, in order
    std::size_t m_limit = 0;                                  // of the search under way
};

}  // namespace roadlyn
