#include "dorvutil/platform/posix/module_map.h"

#include <dlfcn.h>
#include <link.h>

namespace dorvutil::platform {

#if defined(DLFO_EH_SEGMENT_TYPE)

bool FindModule(std::uintptr_t address, ModuleSpan& module) {
    dl_find_object found{};
    if (::_dl_find_object(reinterpret_cast<void*>(address), &found) != 0) return false;
    module = {found.dlfo_link_map->l_name, found.dlfo_link_map->l_addr};
    return true;
}

#else

namespace {

struct Search {
    std::uintptr_t address;
    ModuleSpan* module;
};

int Match(dl_phdr_info* info, std::size_t, void* search) {
    const auto& wanted = *static_cast<Search*>(search);
    for (ElfW(Half) i = 0; i < info->dlpi_phnum; ++i) {
        const ElfW(Phdr)& segment = info->dlpi_phdr[i];
        if (segment.p_type != PT_LOAD || wanted.address - info->dlpi_addr - segment.p_vaddr >= segment.p_memsz)
            continue;
        *wanted.module = {info->dlpi_name, info->dlpi_addr};
        return 1;
    }
    return 0;
}

}  // namespace

bool FindModule(std::uintptr_t address, ModuleSpan& module) {
    Search search{address, &module};
    return ::dl_iterate_phdr(Match, &search) != 0;
}

#endif

}  // namespace dorvutil::platform
