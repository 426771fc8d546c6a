#pragma once

#include <memory>
#include <string>
#include <vector>

#include "choice.h"
#include "dorvutil/typeahead.h"
#include "place_index.h"
#include "sources/source_board.h"

namespace roadlyn {

/// A source whose results are the names of a table, found through a PlaceIndex. Of all that match it reports the first
/// hundred in the order of the final list, which no list can show more of; a derived class says what the table holds.
class NameSource : public dorvutil::TypeAheadSource {
public:
    bool HasPreload() const override { return true; }

protected:
    NameSource(SourceKind kind, SourceBoard& board) : TypeAheadSource(kind), m_board(board), m_kind(kind) {}

    bool Preload() final;
    void Search(const dorvutil::ORVustring& input) final;

    /// Makes the table, in display order. Throws InputError when the data is damaged.
    virtual std::shared_ptr<const PlaceTable> LoadTable(const ProgressFunction& progress) = 0;
    /// Called on the preload thread, once table and index are there.
    virtual void OnLoaded() {}
    /// What one row stands for.
    virtual Choice ChoiceAt(std::uint32_t row) const = 0;
    /// The data of a row's result: what sets it apart from others of the same name, and leads back to the row.
    virtual std::string KeyOf(std::uint32_t row) const { return FormatRow(row); }

    SourceBoard& Board() const { return m_board; }
    const PlaceTable& Table() const { return *m_table; }
    const std::shared_ptr<const PlaceTable>& TablePointer() const { return m_table; }

private:
    struct ChosenRow {
        std::uint32_t row;
        std::int32_t relevance;
    };

    std::string FormatRow(std::uint32_t row) const;
    void FindChosenRows();
    void Report(std::uint32_t row, std::int32_t relevance);
    void SearchTable(std::string_view text);

    SourceBoard& m_board;
    const SourceKind m_kind;
    std::shared_ptr<const PlaceTable> m_table;
    PlaceIndex m_index;
    std::vector<PlaceHit> m_hits;
    SourceBoard::ChoicesPointer m_choices;  // those that m_chosen was made from
    std::vector<ChosenRow> m_chosen;
};

}  // namespace roadlyn
