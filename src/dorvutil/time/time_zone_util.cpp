#include "dorvutil/time/time_zone_util.h"

#include <cstring>
#include <new>

namespace dorvutil {
namespace {

constexpr std::size_t kSortKeyOffset = 6 * sizeof(std::int32_t);
constexpr std::size_t kListIndexOffset = 65;

// The record is the host's and its layout not ours to know: its fields are reached by their place.
template <class T>
T FieldAt(const DstData* zone, std::size_t offset) {
    T value;
    std::memcpy(&value, reinterpret_cast<const unsigned char*>(zone) + offset, sizeof(value));
    return value;
}

}  // namespace

CTimeZoneUtil::~CTimeZoneUtil() = default;

bool CTimeZoneUtil::GetTimeZoneName(std::uint32_t, ORVustring&) { return false; }

std::int32_t CTimeZoneUtil::GetCurrentTimeZoneUIIndex() const {
    return m_currentZone ? FieldAt<std::uint8_t>(m_currentZone, kListIndexOffset) : 0;
}

bool CTimeZoneUtil::RestoreTimeZone(std::uint32_t) { return false; }

bool CTimeZoneUtil::SetCurrentTimeZone(std::uint32_t) { return false; }

bool CTimeZoneUtil::SetCurrentTimeZone(const DstData*) { return false; }

const DstData* CTimeZoneUtil::GetTimeZoneData(std::int32_t, ORVustring&, ORVustring&) const { return nullptr; }

std::uint32_t CTimeZoneUtil::GetTimeZoneCount() { return 0; }

std::uint32_t CTimeZoneUtil::GetTimeZoneDataCount() { return 0; }

void CTimeZoneUtil::SetRegionFilter(std::uint8_t filter) { m_regionFilter = filter; }

void CTimeZoneUtil::SetTimeZoneOverride(std::uint32_t) const {}

bool CTimeZoneUtil::PopulateTimeZones() { return false; }

int CTimeZoneUtil::SortTimeZones(DstData* const* a, DstData* const* b) {
    return FieldAt<std::int32_t>(*a, kSortKeyOffset) > FieldAt<std::int32_t>(*b, kSortKeyOffset) ? -1 : 1;
}

bool CTimeZoneUtil_Stub::IsImplemented() { return false; }

CTimeZoneUtil* CreateTimeZoneUtil() { return new (std::nothrow) CTimeZoneUtil_Stub; }

}  // namespace dorvutil
