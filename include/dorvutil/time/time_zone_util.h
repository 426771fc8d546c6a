#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/text/string.h"

namespace dorvutil {

/// One time zone of a host's time-zone data. Only the host knows the record; the library reads two of its fields: the
/// signed 32-bit number at byte 24 (what zones are sorted by) and the byte at 65 (its place in the list shown).
struct DstData;

/// A service of time zones. Every operation but IsImplemented has a default that knows no zone. A host derives from it;
/// the library has the stub below alone. Used by one thread at a time.
class DORVUTIL_API CTimeZoneUtil {
public:
    CTimeZoneUtil() = default;
    CTimeZoneUtil(const CTimeZoneUtil&) = delete;
    CTimeZoneUtil& operator=(const CTimeZoneUtil&) = delete;
    virtual ~CTimeZoneUtil();

    virtual bool IsImplemented() = 0;
    virtual bool GetTimeZoneName(std::uint32_t zone, ORVustring& name);  ///< False.
    /// Place of the current zone in the list shown; 0 without one.
    virtual std::int32_t GetCurrentTimeZoneUIIndex() const;
    virtual bool RestoreTimeZone(std::uint32_t zone);      ///< False.
    virtual bool SetCurrentTimeZone(std::uint32_t zone);   ///< False.
    virtual bool SetCurrentTimeZone(const DstData* zone);  ///< False.
    virtual const DstData* GetTimeZoneData(std::int32_t index, ORVustring& name,
                                           ORVustring& description) const;  ///< Null.
    virtual std::uint32_t GetTimeZoneCount();                               ///< 0.
    virtual std::uint32_t GetTimeZoneDataCount();                           ///< 0.
    virtual void SetRegionFilter(std::uint8_t filter);                      ///< Stores the filter.

protected:
    virtual void SetTimeZoneOverride(std::uint32_t zone) const;  ///< Nothing.
    virtual bool PopulateTimeZones();                            ///< False.

    /// Order of a sort that puts the larger sort key first: -1 when that of `a` is greater, else 1, never 0.
    static int SortTimeZones(DstData* const* a, DstData* const* b);

    const DstData* m_currentZone = nullptr;
    std::uint8_t m_regionFilter = 0;
    std::int32_t m_minOffset = -1440;  ///< Lowest offset allowed, in minutes.
    std::int32_t m_maxOffset = 1440;   ///< Highest offset allowed, in minutes.
};

/// The service that has nothing to offer.
class DORVUTIL_API CTimeZoneUtil_Stub : public CTimeZoneUtil {
public:
    bool IsImplemented() override;  ///< False.
};

/// A new stub, which the caller owns; null when memory ran out.
DORVUTIL_API CTimeZoneUtil* CreateTimeZoneUtil();

}  // namespace dorvutil
