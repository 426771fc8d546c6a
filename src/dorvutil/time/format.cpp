#include "dorvutil/time/format.h"

#include <cstddef>
#include <string_view>

#include "dorvutil/time/calendar.h"
#include "dorvutil/time/clock.h"

namespace dorvutil {
namespace {

constexpr std::string_view kWeekdays[] = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
constexpr std::string_view kMonths[] = {"January", "February", "March",     "April",   "May",      "June",
                                        "July",    "August",   "September", "October", "November", "December"};

// Text in a buffer of limited size, one unit of which is kept for the terminator; counts on when it is full.
class Output {
public:
    Output(char16_t* out, std::int32_t size)
        : m_out(out), m_room(out && size > 0 ? static_cast<std::size_t>(size) : 0) {}

    void Put(char16_t unit) {
        if (m_length + 1 < m_room) m_out[m_length] = unit;
        ++m_length;
    }
    void Put(std::string_view ascii) {
        for (const char c : ascii) Put(static_cast<char16_t>(c));
    }
    void PutNumber(std::uint32_t number, std::size_t minDigits) {
        char16_t digits[10];
        std::size_t count = 0;
        for (; number != 0 || count < minDigits; number /= 10)
            digits[count++] = static_cast<char16_t>(u'0' + number % 10);
        while (count > 0) Put(digits[--count]);
    }

    // The result of the format functions.
    std::int32_t Finish(std::int32_t size) {
        if (m_room != 0) m_out[m_length < m_room ? m_length : m_room - 1] = 0;
        const std::size_t needed = m_length + 1;
        return needed <= INT32_MAX && (size == 0 || needed <= m_room) ? static_cast<std::int32_t>(needed) : 0;
    }

private:
    char16_t* m_out;
    std::size_t m_room;
    std::size_t m_length = 0;
};

// Writes what `count` letters `letter` of a picture stand for; false when the letter stands for itself.
using Element = bool (*)(const ORV_SYSTEMTIME& time, char16_t letter, std::size_t count, Output& out);

bool PutDateElement(const ORV_SYSTEMTIME& date, char16_t letter, std::size_t count, Output& out) {
    const auto putName = [&](std::string_view name) { out.Put(count == 3 ? name.substr(0, 3) : name); };
    switch (letter) {
        case u'd':
            if (count <= 2) return out.PutNumber(date.wDay, count), true;
            return putName(
                       kWeekdays[calendar::WeekdayOf(calendar::DaysFromDate({date.wYear, date.wMonth, date.wDay}))]),
                   true;
        case u'M':
            if (count <= 2) return out.PutNumber(date.wMonth, count), true;
            return putName(kMonths[date.wMonth - 1]), true;
        case u'y':
            if (count <= 2) return out.PutNumber(date.wYear % 100u, count), true;
            return out.PutNumber(date.wYear, 4), true;
        default:
            return letter == u'g';
    }
}

bool PutTimeElement(const ORV_SYSTEMTIME& time, char16_t letter, std::size_t count, Output& out) {
    const std::size_t digits = count < 2 ? count : 2;
    switch (letter) {
        case u'h':
            return out.PutNumber(time.wHour % 12 == 0 ? 12u : time.wHour % 12u, digits), true;
        case u'H':
            return out.PutNumber(time.wHour, digits), true;
        case u'm':
            return out.PutNumber(time.wMinute, digits), true;
        case u's':
            return out.PutNumber(time.wSecond, digits), true;
        case u't':
            return out.Put(std::string_view(time.wHour < 12 ? "AM" : "PM").substr(0, digits)), true;
        default:
            return false;
    }
}

// Writes text between apostrophes; `at` follows the first. Returns what follows the last; a text without one runs on.
const char16_t* PutQuoted(const char16_t* at, Output& out) {
    for (; *at != 0; ++at) {
        if (*at == u'\'' && *++at != u'\'') return at;
        out.Put(*at);
    }
    return at;
}

std::int32_t Format(const ORV_SYSTEMTIME& time, const char16_t* picture, Element put, char16_t* text,
                    std::int32_t size) {
    Output out(text, size);
    while (*picture != 0) {
        const char16_t letter = *picture;
        if (letter == u'\'') {
            picture = PutQuoted(picture + 1, out);
            continue;
        }
        std::size_t count = 1;
        while (picture[count] == letter) ++count;
        if (!put(time, letter, count, out)) {
            for (std::size_t i = 0; i < count; ++i) out.Put(letter);
        }
        picture += count;
    }
    return out.Finish(size);
}

const char16_t* DatePicture(std::uint32_t flags) {
    if ((flags & kDateLong) != 0) return u"dddd, MMMM d, yyyy";
    return (flags & kDateYearMonth) != 0 ? u"MMMM yyyy" : u"M/d/yyyy";
}

const char16_t* TimePicture(std::uint32_t flags) {
    static constexpr const char16_t* kPictures[][3] = {
        {u"h:mm:ss tt", u"h:mm tt", u"h tt"}, {u"h:mm:ss", u"h:mm", u"h"}, {u"HH:mm:ss", u"HH:mm", u"HH"}};
    const std::size_t hours = (flags & kTime24Hours) != 0 ? 2 : (flags & kTimeNoMarker) != 0 ? 1 : 0;
    const std::size_t cut = (flags & kTimeNoMinutes) != 0 ? 2 : (flags & kTimeNoSeconds) != 0 ? 1 : 0;
    return kPictures[hours][cut];
}

ORV_SYSTEMTIME ValueOrNow(const ORV_SYSTEMTIME* value) {
    if (value) return *value;
    ORV_SYSTEMTIME now;
    TIME_GetLocalTime(&now);
    return now;
}

}  // namespace

std::int32_t TIME_GetDateFormat(std::uint32_t, std::uint32_t flags, const ORV_SYSTEMTIME* date, const char16_t* format,
                                char16_t* out, std::int32_t, std::int32_t size) {
    const ORV_SYSTEMTIME shown = ValueOrNow(date);
    if (!calendar::IsDate(shown)) return 0;
    return Format(shown, format ? format : DatePicture(flags), PutDateElement, out, size);
}

std::int32_t TIME_GetTimeFormat(std::uint32_t, std::uint32_t flags, const ORV_SYSTEMTIME* time, const char16_t* format,
                                char16_t* out, std::int32_t, std::int32_t size, bool) {
    const ORV_SYSTEMTIME shown = ValueOrNow(time);
    if (!calendar::IsTimeOfDay(shown)) return 0;
    return Format(shown, format ? format : TimePicture(flags), PutTimeElement, out, size);
}

void TIME_GetSystemLocaleDateString(const ORV_FILETIME&, ORVustring&) {}

}  // namespace dorvutil
