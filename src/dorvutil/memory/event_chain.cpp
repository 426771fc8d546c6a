// Storage for the waiting places of semaphores, which lie below the pools that serve them.
#include "dorvutil/concurrency/semaphore.h"
#include "dorvutil/frame/accessors.h"
#include "dorvutil/memory/heap.h"
#include "dorvutil/memory/pool.h"

namespace dorvutil {

template <>
void* AllocEventChain<critSec>() {
    Allocator* const pool = EventChainPool();
    void* const node = pool ? pool->Alloc() : nullptr;
    return node ? node : Mem_Malloc(sizeof(OrvEventChain<critSec>));
}

template <>
void FreeEventChain<critSec>(void* node) {
    Allocator* const pool = EventChainPool();
    if (pool && pool->Contains(node)) {
        pool->Free(node);
    } else {
        Mem_Free(node);
    }
}

template <>
void* AllocEventChain<mutex>() {
    return Mem_Malloc(sizeof(OrvEventChain<mutex>));
}

template <>
void FreeEventChain<mutex>(void* node) {
    Mem_Free(node);
}

template <>
void* AllocEventChain<nullSync>() {
    return Mem_Malloc(sizeof(OrvEventChain<nullSync>));
}

template <>
void FreeEventChain<nullSync>(void* node) {
    Mem_Free(node);
}

}  // namespace dorvutil
