#include "fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    dorvutil::fuzz::Input input(data, size);
    dorvutil::fuzz::TestInput(input);
    return 0;
}
