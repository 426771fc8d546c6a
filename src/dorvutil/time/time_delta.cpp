#include "dorvutil/time/time_delta.h"

#include "dorvutil/time/clock_fields.h"

namespace dorvutil {
namespace {

ClockFields FieldsOf(const COrv_TimeDelta& delta) { return {delta.m_hours, delta.m_minutes, delta.m_seconds}; }

}  // namespace

COrv_TimeDelta::COrv_TimeDelta(std::uint32_t days, std::uint32_t hours, std::uint32_t minutes, std::uint32_t seconds) {
    Assign(days, hours, minutes, seconds);
}

COrv_TimeDelta::COrv_TimeDelta(std::uint32_t days, ORV_UTCTIME time) {
    Assign(days, time.Hour(), time.Minute(), time.Second());
}

void COrv_TimeDelta::Assign(std::uint32_t days, std::uint32_t hours, std::uint32_t minutes, std::uint32_t seconds) {
    FormatTimeForTimeDelta(days, hours, minutes, seconds);
    m_days = days;
    m_hours = static_cast<std::uint8_t>(hours);
    m_minutes = static_cast<std::uint8_t>(minutes);
    m_seconds = static_cast<std::uint8_t>(seconds);
}

void COrv_TimeDelta::FormatTimeForTimeDelta(std::uint32_t& days, std::uint32_t& hours, std::uint32_t& minutes,
                                            std::uint32_t& seconds) const {
    ClockFields fields{hours, minutes, seconds};
    days += fields.CarryDays();
    hours = fields.hours;
    minutes = fields.minutes;
    seconds = fields.seconds;
}

COrv_TimeDelta COrv_TimeDelta::operator+(const COrv_TimeDelta& other) const {
    const ClockFields a = FieldsOf(*this), b = FieldsOf(other);
    return {m_days + other.m_days, a.hours + b.hours, a.minutes + b.minutes, a.seconds + b.seconds};
}

COrv_TimeDelta COrv_TimeDelta::operator-(const COrv_TimeDelta& other) const {
    ClockFields fields = FieldsOf(*this);
    const std::uint32_t borrowed = fields.Subtract(FieldsOf(other));
    return {m_days - other.m_days - borrowed, fields.hours, fields.minutes, fields.seconds};
}

}  // namespace dorvutil
