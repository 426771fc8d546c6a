#include "place_file.h"

#include <array>
#include <limits>
#include <unordered_map>

#include "input_error.h"
#include "tsv_reader.h"

namespace roadlyn {
namespace {

enum Column : std::size_t { kName, kCountry, kAdmin1, kLat, kLon, kPopulation };
constexpr std::array<std::string_view, 6> kColumns = {"name", "country", "admin1", "lat_e6", "lon_e6", "population"};
constexpr std::size_t kLinesPerReport = 4096;

class PlaceParser {
public:
    PlaceParser(const std::string& path, std::string_view text) : m_reader(path, text, kColumns) {}

    PlaceTable Run(const ProgressFunction& progress) {
        const std::size_t whole = m_reader.BytesLeft() + 1;
        while (m_reader.Next()) {
            ReadRow();
            if (m_reader.Line() % kLinesPerReport == 0 &&
                !progress(static_cast<unsigned>((whole - m_reader.BytesLeft()) * 1000 / whole))) {
                return {};
            }
        }
        if (m_table.Count() == 0) m_reader.Fail("no place follows the header line");
        return std::move(m_table);
    }

private:
    void ReadRow() {
        const std::string_view name = m_reader.Field(kName);
        if (name.empty()) m_reader.Fail("the name is empty");
        if (name.size() > PlaceTable::kMaxNameLength) m_reader.Fail("the name is longer than 65535 bytes");
        Place place{};
        SetCountry(place, m_reader.Field(kCountry));
        place.admin1 = Admin1(m_reader.Field(kAdmin1));
        place.latE6 = m_reader.Number(kLat, -kMaxLatE6, kMaxLatE6);
        place.lonE6 = m_reader.Number(kLon, -kMaxLonE6, kMaxLonE6);
        place.population = m_reader.Number(kPopulation, 0, std::numeric_limits<std::int32_t>::max());
        m_table.Add(name, place);
    }

    void SetCountry(Place& place, std::string_view code) const {
        if (code.empty()) return;
        const auto isLetter = [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); };
        if (code.size() != 2 || !isLetter(code[0]) || !isLetter(code[1])) {
            m_reader.Fail("country '" + std::string(code) + "' is not a code of two letters");
        }
        place.country[0] = code[0];
        place.country[1] = code[1];
    }

    std::uint32_t Admin1(std::string_view name) {
        const auto [found, added] = m_admin1.try_emplace(name, 0);
        if (added) found->second = m_table.AddAdmin1(name);
        return found->second;
    }

    TsvReader m_reader;
    std::unordered_map<std::string_view, std::uint32_t> m_admin1;  // keys lie in the file's text
    PlaceTable m_table;
};

}  // namespace

PlaceTable ParsePlaces(const std::string& path, std::string_view text, const ProgressFunction& progress) {
    if (text.size() > std::numeric_limits<std::uint32_t>::max()) throw InputError(path, 0, "larger than 4 GB");
    return PlaceParser(path, text).Run(progress);
}

PlaceTable ReadPlaceFile(const std::string& path, const ProgressFunction& progress) {
    const std::string text = ReadWholeFile(path);
    return ParsePlaces(path, text, progress);
}

}  // namespace roadlyn
