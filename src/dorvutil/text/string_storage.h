#pragma once

#include <cstddef>
#include <cstdint>

#include "dorvutil/text/string_guts.h"

/// Where the storage of strings comes from: the pools of the string allocator, or the general heap for what is too
/// large for them and while there is no allocator.
namespace dorvutil {

/// Storage for a block of `capacity` (a multiple of 8, not 0) characters of T, and where it lies. Null when memory ran
/// out.
template <class T>
void* AllocBlock(std::uint32_t capacity, GutsSource& source) noexcept;

/// Takes back storage from AllocBlock. A pool's block is dropped when the pool is gone.
template <class T>
void FreeBlock(void* block, std::uint32_t capacity, GutsSource source) noexcept;

/// Storage for one string object of `size` bytes; null when memory ran out.
void* AllocStringObject(std::size_t size) noexcept;
/// Takes it back; null is ignored.
void FreeStringObject(void* object) noexcept;

/// Bytes of an element of the object pool.
std::uint32_t StringObjectElementSize() noexcept;

}  // namespace dorvutil
