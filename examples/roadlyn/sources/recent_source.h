#pragma once

#include "sources/name_source.h"

namespace roadlyn {

/// The user's latest choices, kept in a file. The later the choice, the higher its relevance. A result's data is its
/// line of the file.
class RecentSource : public NameSource {
public:
    RecentSource(SourceBoard& board, std::string path) : NameSource(kRecentSource, board), m_path(std::move(path)) {}

    /// Adds a choice to the file and has the source loaded again. Throws InputError when the file cannot be changed.
    /// Main thread.
    void Remember(const Choice& choice);

protected:
    std::shared_ptr<const PlaceTable> LoadTable(const ProgressFunction& progress) override;
    Choice ChoiceAt(std::uint32_t row) const override { return (*m_choices)[row]; }

private:
    const std::string m_path;  // empty: nothing is kept
    SourceBoard::ChoicesPointer m_choices;
};

}  // namespace roadlyn
