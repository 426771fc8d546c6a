#include "sources/recent_source.h"

#include "input_error.h"
#include "recent_file.h"

namespace roadlyn {

void RecentSource::Remember(const Choice& choice) {
    if (m_path.empty()) throw InputError("recent choices", 0, "no home directory to keep them in; use --recent");
    RememberChoice(m_path, choice);
    // The places may be searched again before this source is loaded again, and go by what was chosen.
    Board().SetChoices(std::make_shared<const std::vector<Choice>>(ReadRecentFile(m_path)));
    OnDataChanged(true);
}

std::shared_ptr<const PlaceTable> RecentSource::LoadTable(const ProgressFunction& /*progress*/) {
    auto choices = std::make_shared<const std::vector<Choice>>(ReadRecentFile(m_path));
    auto table = std::make_shared<PlaceTable>();
    const std::uint32_t noRegion = table->AddAdmin1("");
    auto age = static_cast<std::int32_t>(choices->size());
    for (const Choice& choice : *choices) {
        Place entry{};
        entry.admin1 = noRegion;
        entry.population = age--;  // its relevance; the rows are in display order already
        table->Add(choice.name, entry);
    }
    m_choices = choices;
    Board().SetChoices(std::move(choices));
    return table;
}

}  // namespace roadlyn
