#include "dorvutil/memory/numbered_list.h"

namespace dorvutil {

NumberedPointList::~NumberedPointList() = default;

std::int32_t NumberedPointList::GetSelectedIndex() const { return -1; }

bool NumberedPointList::SetSelectedIndex(std::int32_t) { return false; }

void NumberedPointList::LockList() const {}

void NumberedPointList::UnlockList() const {}

}  // namespace dorvutil
