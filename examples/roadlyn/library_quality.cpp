#include "library_quality.h"

#include "dorvutil/text/string.h"
#include "dorvutil/typeahead/match_quality.h"

namespace roadlyn {

std::uint32_t LibraryMatchQuality(std::string_view input, std::string_view display) {
    const dorvutil::ORVustring inputText(input.data(), static_cast<std::int32_t>(input.size()));
    const dorvutil::ORVustring displayText(display.data(), static_cast<std::int32_t>(display.size()));
    return dorvutil::GetTypeAheadMatchQuality(inputText, displayText);
}

}  // namespace roadlyn
