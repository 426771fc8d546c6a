#include "dorvutil/text/string_file.h"

#include <algorithm>
#include <bit>

#include "dorvutil/frame/byte_order.h"
#include "dorvutil/memory/block_io.h"

namespace dorvutil {
namespace {

constexpr bool kSwap = std::endian::native == std::endian::big;

void Swap(char16_t* units, std::uint32_t n) {
    std::transform(units, units + n, units,
                   [](char16_t c) { return static_cast<char16_t>(ConvBig2Little(static_cast<std::uint16_t>(c))); });
}

}  // namespace

bool WriteUnits(COrvFileHandleBase* file, const char* units, std::uint32_t n) {
    return block_io::Write(file, units, n);
}

bool WriteUnits(COrvFileHandleBase* file, const char16_t* units, std::uint32_t n) {
    if constexpr (!kSwap) return block_io::Write(file, units, std::size_t{2} * n);
    for (std::uint32_t i = 0; i < n; ++i) {
        char16_t unit = units[i];
        Swap(&unit, 1);
        if (!block_io::Write(file, &unit, sizeof(unit))) return false;
    }
    return true;
}

std::uint32_t ReadUnits(COrvFileHandleBase* file, char* units, std::uint32_t n) {
    return static_cast<std::uint32_t>(block_io::Read(file, units, n));
}

std::uint32_t ReadUnits(COrvFileHandleBase* file, char16_t* units, std::uint32_t n) {
    const auto count = static_cast<std::uint32_t>(block_io::Read(file, units, std::size_t{2} * n) / 2);
    if constexpr (kSwap) Swap(units, count);
    return count;
}

}  // namespace dorvutil
