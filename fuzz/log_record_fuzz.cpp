// Log records of any bytes: their texts stay inside the record, the line stays one line of limited length, and the ring
// gives back what it took, in order.
#include <deque>

#include "dorvutil/logging/log_message.h"
#include "dorvutil/logging/message_ring.h"
#include "fuzz_support.h"

namespace dorvutil::fuzz {
namespace {

constexpr std::size_t kLongestLine = 1023;
constexpr std::size_t kMessageAt = 75;  // column of the quote in front of the message

const char* const* Texts(const LogDataHolder& holder, const char* (&texts)[4]) {
    texts[0] = holder.m_message;
    texts[1] = holder.m_publisherName;
    texts[2] = holder.m_levelName;
    texts[3] = holder.m_sourceFile;
    return texts;
}

std::string CheckLine(const LogDataHolder& holder) {
    MemoryFile file;
    const std::uint32_t written = holder.FormattedFileWrite(&file);
    const std::string line = file.Content();
    FUZZ_CHECK(written == line.size() && written <= kLongestLine && written > kMessageAt);
    const std::string_view message = holder.m_message;
    FUZZ_CHECK(line[kMessageAt] == '"' && line.compare(kMessageAt + 1, message.size(), message) == 0);
    if (written < kLongestLine) FUZZ_CHECK(line.substr(line.size() - 2) == "\r\n");
    return line;
}

void CheckTexts(const LogDataHolder& holder) {
    const char* texts[4];
    for (int i = 0; i < 4; ++i) {
        const char* const text = Texts(holder, texts)[i];
        const bool inside = text >= holder.m_record.m_text && text < holder.m_record.m_text + kLogTextSize;
        FUZZ_CHECK(inside || *text == '\0');
        if (inside) FUZZ_CHECK(text + std::strlen(text) < holder.m_record.m_text + sizeof holder.m_record.m_text);
    }
    FUZZ_CHECK(holder.m_record.m_textUsed >= 0 && holder.m_record.m_textUsed <= std::int32_t{kLogTextSize});
    FUZZ_CHECK(holder.MessageSize() == holder.m_record.m_textUsed + std::int32_t{kLogMessageOverhead});
}

void CheckLoaded(std::string_view bytes) {
    // A record passed on has its overhead at least; the rest is as long as it says.
    Exact<char> record(std::max<std::size_t>(bytes.size(), kLogMessageOverhead));
    std::copy(bytes.begin(), bytes.end(), record.Data());
    LogDataHolder holder;
    holder.Load(record.Data(), record.Count());
    FUZZ_CHECK(holder.UnpackStrings() == 4);
    CheckTexts(holder);
    const std::string line = CheckLine(holder);
    LogDataHolder copy;
    copy = holder.m_record;
    CheckTexts(copy);
    FUZZ_CHECK(CheckLine(copy) == line);
    // Its own texts packed again, from outside the record.
    const std::string texts[4] = {holder.m_message, holder.m_publisherName, holder.m_levelName, holder.m_sourceFile};
    LogDataHolder packed;
    packed.m_record = holder.m_record;
    const std::int32_t count =
        packed.PackStrings(texts[0].c_str(), texts[1].c_str(), texts[2].c_str(), texts[3].c_str());
    packed.UnpackStrings();
    CheckTexts(packed);
    const char* again[4];
    for (int i = 0; i < count; ++i) FUZZ_CHECK(Texts(packed, again)[i] == texts[i]);
    if (count == 4) FUZZ_CHECK(CheckLine(packed) == line);
}

void CheckWholeRecord(std::string_view bytes) {
    LogDataMsg record{};
    std::memcpy(static_cast<void*>(&record), bytes.data(), std::min(bytes.size(), sizeof record));
    LogDataHolder holder;
    holder = record;
    CheckTexts(holder);
    CheckLine(holder);
}

// Texts of any length: those are packed that fit, up to the first that does not.
void CheckPacked(Input input) {
    std::string texts[4];
    std::int32_t fitting = 0;
    std::size_t used = 0;
    bool fits = true;
    for (std::string& text : texts) {
        text = UpToZero(input.Until('\n'));
        fits = fits && used + text.size() < kLogTextSize;
        if (!fits) continue;
        used += text.size() + 1;
        ++fitting;
    }
    LogDataHolder holder;
    FUZZ_CHECK(holder.PackStrings(texts[0].c_str(), texts[1].c_str(), texts[2].c_str(), texts[3].c_str()) == fitting);
    FUZZ_CHECK(holder.m_record.m_textUsed == static_cast<std::int32_t>(used));
    holder.UnpackStrings();
    CheckTexts(holder);
    const char* unpacked[4];
    for (int i = 0; i < 4; ++i) FUZZ_CHECK(Texts(holder, unpacked)[i] == (i < fitting ? texts[i] : std::string()));
    CheckLine(holder);
}

// The ring against a queue that has no limit. Each byte is an order.
void CheckRing(std::string_view orders) {
    const auto ring = std::make_unique<LogMessageRing>();
    LogDataMsg overflow{};
    overflow.m_event = eLogEventOverflow;
    ring->SetOverflowRecord(overflow);
    std::deque<std::string> model;  // without the markers
    LogDataMsg record{};
    for (const char order : orders) {
        const auto number = static_cast<std::uint8_t>(order);
        if (number < 200) {
            record.m_textUsed = 2 * number;
            record.m_line = number;
            std::memset(record.m_text, order, sizeof record.m_text);
            const std::int32_t stored = ring->Store(record);
            FUZZ_CHECK(stored <= 0 || stored == 2 * number + std::int32_t{kLogMessageOverhead});
            if (stored > 0)
                model.emplace_back(reinterpret_cast<const char*>(&record), static_cast<std::size_t>(stored));
            if (stored < 0) {
                ring->NoteDrop();
                FUZZ_CHECK(ring->Store(record) <= 0);
            }
        } else {
            LogDataMsg out;
            const std::int32_t limit = number < 250 ? std::int32_t{sizeof out} : number - 250;
            const std::int32_t read = ring->Read(&out, limit);
            FUZZ_CHECK(read >= 0 && read <= limit);
            if (read == static_cast<std::int32_t>(LogMessageRing::kOverflowSize) && out.m_event == eLogEventOverflow) {
                continue;
            }
            if (limit < static_cast<std::int32_t>(sizeof out)) break;  // a part of a record, or of a marker's
            FUZZ_CHECK(!model.empty() || read == 0);
            if (model.empty()) continue;
            FUZZ_CHECK(model.front().size() == static_cast<std::size_t>(read));
            FUZZ_CHECK(std::memcmp(model.front().data(), &out, model.front().size()) == 0);
            model.pop_front();
        }
    }
    const auto batch = std::make_unique<LogBatch>();
    ring->TakeAll(*batch);
    FUZZ_CHECK(batch->m_count <= LogMessageRing::kMostSlots);
    std::size_t bytes = 0;
    for (std::uint32_t i = 0; i < batch->m_count; ++i) {
        if (batch->m_sizes[i] != LogMessageRing::kMarker) bytes += static_cast<std::size_t>(batch->m_sizes[i]);
    }
    FUZZ_CHECK(bytes < LogMessageRing::kRingSize);
    FUZZ_CHECK(!ring->IsFilling() && ring->Read(&record, sizeof record) == 0);
}

}  // namespace

void TestInput(Input& input) {
    CheckPacked(input);
    const std::string_view bytes = input.Rest();
    CheckLoaded(bytes.substr(0, sizeof(LogDataMsg)));
    CheckWholeRecord(bytes);
    CheckRing(bytes);
}

}  // namespace dorvutil::fuzz
