#pragma once

#include <cstddef>
#include <cstdint>

#include "dorvutil/frame/export.h"
#include "dorvutil/memory/list.h"
#include "dorvutil/memory/pool.h"
#include "dorvutil/text/string_guts.h"

namespace dorvutil {

/// The pools of the string classes: six for each width, of blocks with a capacity of 8, 16 … 48 characters, and one of
/// string objects. One instance, owned by the registry; strings do without when it is not there. Strings may outlive
/// it: a pool with elements in use is not freed at destruction but left to them. Any thread.
class DORVUTIL_API CORVStringAllocator {
public:
    static constexpr std::uint32_t kPoolsPerWidth = 6;
    static constexpr std::uint32_t kPoolBlockSize = 4096;  ///< bytes

    CORVStringAllocator();
    ~CORVStringAllocator();
    CORVStringAllocator(const CORVStringAllocator&) = delete;
    CORVStringAllocator& operator=(const CORVStringAllocator&) = delete;

    /// The pool of blocks with a capacity of 8 × k characters of T; null for k outside 1 to 6, or when memory ran out.
    template <class T>
    Allocator* BlockPool(std::uint32_t k);
    /// The pool behind operator new of the string classes and their other-width copies.
    Allocator& ObjectPool() { return m_objectPool; }
    /// The shared empty block, which lives as long as the process.
    template <class T>
    StringGuts<T>* EmptyGuts() const {
        return StringGuts<T>::Empty();
    }

private:
    ListMgr<Allocator> m_widePools;
    ListMgr<Allocator> m_narrowPools;
    Allocator m_objectPool;
};

}  // namespace dorvutil
