// The text form of a record. Put together by hand: the delivery thread spends its time here.
#include <algorithm>
#include <cstring>
#include <iterator>

#include "dorvutil/logging/log_message.h"
#include "dorvutil/storage/file_handle.h"

namespace dorvutil {
namespace {

constexpr std::uint32_t kLineSize = 1023;  // bytes at most

// The fields in front of the message, each followed by a blank.
constexpr std::uint32_t kTimeAt = 0;
constexpr std::uint32_t kTimeWidth = 24;
constexpr std::uint32_t kTickAt = kTimeAt + kTimeWidth + 1;
constexpr std::uint32_t kNumberWidth = 10;  // the digits of any number
constexpr std::uint32_t kDeltaAt = kTickAt + kNumberWidth + 1;
constexpr std::uint32_t kPublisherAt = kDeltaAt + kNumberWidth + 1;
constexpr std::uint32_t kNameWidth = 13;
constexpr std::size_t kNameLength = 10;  // what is shown of a name
constexpr std::uint32_t kLevelAt = kPublisherAt + kNameWidth + 1;
constexpr std::uint32_t kMessageAt = kLevelAt + kNameWidth + 1;

// Writes the digits of `value` so that they end before `end`; where they start.
char* DigitsBefore(char* end, std::uint32_t value) {
    do {
        *--end = static_cast<char>('0' + value % 10);
        value /= 10;
    } while (value != 0);
    return end;
}

// Digits of `value` with zeros up to `least` of them, which it usually has; the end.
char* Digits(char* out, std::uint32_t value, std::uint32_t least) {
    char text[kNumberWidth];
    char* const end = text + kNumberWidth;
    char* start = DigitsBefore(end, value);
    while (start > end - least) *--start = '0';
    return std::copy(start, end, out);
}

char* TwoDigits(char* out, std::uint32_t value) {
    if (value > 99) return Digits(out, value, 2);
    out[0] = static_cast<char>('0' + value / 10);
    out[1] = static_cast<char>('0' + value % 10);
    return out + 2;
}

// A foreign record may hold any numbers: the longest text has 41 bytes, of which the field shows its width.
void PutTime(char* field, const ORV_SYSTEMTIME& time) {
    char text[48];
    char* end = TwoDigits(text, time.wMonth);
    *end++ = '/';
    end = TwoDigits(end, time.wDay);
    *end++ = '/';
    end = Digits(end, time.wYear, 4);
    *end++ = ' ';
    end = TwoDigits(end, time.wHour);
    *end++ = ':';
    end = TwoDigits(end, time.wMinute);
    *end++ = ':';
    end = TwoDigits(end, time.wSecond);
    *end++ = '.';
    end = Digits(end, time.wMilliseconds, 3);
    std::memcpy(field, text, std::min<std::size_t>(kTimeWidth, static_cast<std::size_t>(end - text)));
}

void PutName(char* field, char open, const char* name, char close) {
    *field++ = open;
    const char* const end = name + kNameLength;
    while (name != end && *name != '\0') *field++ = *name++;
    *field = close;
}

// A line of limited length; what exceeds it is lost.
class Line {
public:
    Line(const LogDataMsg& record, const char* publisherName, const char* levelName) {
        std::memset(m_bytes, ' ', kMessageAt);
        PutTime(m_bytes + kTimeAt, record.m_time);
        DigitsBefore(m_bytes + kTickAt + kNumberWidth, record.m_tick);
        DigitsBefore(m_bytes + kDeltaAt + kNumberWidth, record.m_tickDelta);
        PutName(m_bytes + kPublisherAt, '[', publisherName, ']');
        PutName(m_bytes + kLevelAt, '<', levelName, '>');
    }
    void Add(const char* text, std::size_t n) {
        n = std::min<std::size_t>(n, kLineSize - m_length);
        std::memcpy(m_bytes + m_length, text, n);
        m_length += static_cast<std::uint32_t>(n);
    }
    void Add(const char* text) { Add(text, std::strlen(text)); }
    void AddSigned(std::int32_t value) {
        char text[kNumberWidth + 1];
        const auto bits = static_cast<std::uint32_t>(value);
        char* start = DigitsBefore(std::end(text), value < 0 ? 0u - bits : bits);
        if (value < 0) *--start = '-';
        Add(start, static_cast<std::size_t>(std::end(text) - start));
    }

    const char* Bytes() const { return m_bytes; }
    std::uint32_t Length() const { return m_length; }

private:
    char m_bytes[kLineSize + 1];
    std::uint32_t m_length = kMessageAt;
};

const char* FileName(const char* path) {
    const char* name = path + std::strlen(path);
    while (name != path && name[-1] != '\\' && name[-1] != '/') --name;
    return name;
}

}  // namespace

std::uint32_t LogDataHolder::FormattedFileWrite(COrvFileHandleBase* file) const {
    if (!file) return 0;
    Line line(m_record, m_publisherName, m_levelName);
    line.Add("\"", 1);
    line.Add(m_message);
    if (std::strcmp(m_levelName, "BRIEF") == 0) {
        line.Add("\"\r\n", 3);
    } else {
        line.Add("\" (@ ", 5);
        line.Add(FileName(m_sourceFile));
        line.Add(":", 1);
        line.AddSigned(m_record.m_line);
        line.Add(")\r\n", 3);
    }
    return file->Write(line.Bytes(), line.Length(), 1);
}

}  // namespace dorvutil
