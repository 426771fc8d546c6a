#pragma once

#include <vector>

#include "dorvutil/memory/vector.h"

namespace dorvutil::test {

template <class T>
TVector<T> Made(const std::vector<T>& values) {
    TVector<T> v;
    v.Add(values.data(), static_cast<std::uint32_t>(values.size()));
    return v;
}

template <class T>
std::vector<T> Held(const TVector<T>& v) {
    return std::vector<T>(v.begin(), v.end());
}

}  // namespace dorvutil::test
