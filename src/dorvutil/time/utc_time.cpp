#include "dorvutil/time/utc_time.h"

#include <algorithm>

#include "dorvutil/time/clock_fields.h"
#include "dorvutil/time/packed_digits.h"

namespace dorvutil {
namespace {

using packed::TwoDigits;

constexpr std::uint16_t Short(std::int32_t value) { return static_cast<std::uint16_t>(value); }

ClockFields FieldsOf(const ORV_UTCTIME& time) { return {time.Hour(), time.Minute(), time.Second()}; }

std::int32_t PackFields(const ClockFields& fields) {
    return packed::Pack(static_cast<std::int32_t>(fields.hours), static_cast<std::int32_t>(fields.minutes),
                        static_cast<std::int32_t>(fields.seconds));
}

}  // namespace

ORV_UTCTIME::ORV_UTCTIME(std::uint16_t hour, std::uint16_t minute, std::uint16_t second)
    : m_value(packed::Pack(std::min<std::int32_t>(hour, 23), std::min<std::int32_t>(minute, 59),
                           std::min<std::int32_t>(second, 59))) {}

std::uint16_t ORV_UTCTIME::Hour() const { return Short(TwoDigits(m_value, 10'000) % 24); }

std::uint16_t ORV_UTCTIME::Minute() const { return Short(TwoDigits(m_value, 100) % 60); }

std::uint16_t ORV_UTCTIME::Second() const { return Short(TwoDigits(m_value, 1) % 60); }

std::int32_t ORV_UTCTIME::SecondsSince(const ORV_UTCTIME& other) const {
    return static_cast<std::int32_t>(FieldsOf(*this).Seconds()) - static_cast<std::int32_t>(FieldsOf(other).Seconds());
}

double ORV_UTCTIME::SecondsSinceHighPrecision(const ORV_UTCTIME& other) const { return SecondsSince(other); }

std::int32_t ORV_UTCTIME::MinutesSince(const ORV_UTCTIME& other) const { return SecondsSince(other) / 60; }

std::int32_t ORV_UTCTIME::HoursSince(const ORV_UTCTIME& other) const { return MinutesSince(other) / 60; }

std::int32_t ORV_UTCTIME::DaysSince(const ORV_UTCTIME& other) const { return HoursSince(other) / 24; }

std::uint32_t ORV_UTCTIME::Assign(std::uint32_t hours, std::uint32_t minutes, std::uint32_t seconds) {
    ClockFields fields{hours, minutes, seconds};
    const std::uint32_t days = fields.CarryDays();
    m_value = PackFields(fields);
    return days;
}

bool ORV_UTCTIME::Add(const ORV_UTCTIME& other) {
    const ClockFields a = FieldsOf(*this), b = FieldsOf(other);
    return Assign(a.hours + b.hours, a.minutes + b.minutes, a.seconds + b.seconds) != 0;
}

std::uint32_t ORV_UTCTIME::Subtract(std::uint32_t hours, std::uint32_t minutes, std::uint32_t seconds) {
    ClockFields less{hours, minutes, seconds};
    const std::uint32_t days = less.CarryDays();
    ClockFields fields = FieldsOf(*this);
    const std::uint32_t borrowed = fields.Subtract(less);
    m_value = PackFields(fields);
    return days + borrowed;
}

}  // namespace dorvutil
