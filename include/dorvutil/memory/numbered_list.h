#pragma once

#include <cstdint>

#include "dorvutil/frame/export.h"

namespace dorvutil {

/// A list of numbered points that a host shows: what a view asks of it.
class DORVUTIL_API NumberedPointList {
public:
    NumberedPointList() = default;
    NumberedPointList(const NumberedPointList&) = default;
    NumberedPointList& operator=(const NumberedPointList&) = default;
    virtual ~NumberedPointList();

    virtual std::uint32_t PointCount() const = 0;
    /// The number shown at a point, by its index.
    virtual std::int32_t PointNumber(std::uint32_t index) const = 0;
    /// Where it lies, `x` longitude and `y` latitude in millionths of a degree; false when there is no such point.
    virtual bool PointAt(std::uint32_t index, std::int32_t& x, std::int32_t& y) const = 0;

    /// Index of the selected point, -1 for none.
    virtual std::int32_t GetSelectedIndex() const;
    /// False when the list has no selection.
    virtual bool SetSelectedIndex(std::int32_t index);
    /// Held by a reader over several calls; lists that never change do nothing.
    virtual void LockList() const;
    virtual void UnlockList() const;
};

}  // namespace dorvutil
