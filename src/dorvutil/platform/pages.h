#pragma once

#include <cstddef>

/// Pages of memory, for allocators. Addresses and sizes are multiples of PageSize. Any thread.
namespace dorvutil::platform {

/// Bytes; a power of two, at most 64 KiB.
std::size_t PageSize();

/// Puts zeroed memory behind a part of a reserved range (ReserveRange in host.h) that has none; false when refused.
bool CommitPages(void* base, std::size_t size);
/// Gives the memory behind such a part back and keeps the addresses reserved; false, with nothing changed, when
/// refused.
bool DecommitPages(void* base, std::size_t size);

/// Zeroed memory at addresses of its own; null when refused. Ended by UnmapPages.
void* MapPages(std::size_t size);
void UnmapPages(void* base, std::size_t size);
/// Gives memory of MapPages another size, perhaps at another place, with its content; null, with nothing changed, when
/// refused.
void* RemapPages(void* base, std::size_t oldSize, std::size_t newSize);

/// Bytes that have been committed or mapped by these functions and not been given back.
std::size_t CommittedBytes();

/// Has all of the above that take memory refuse it from now on, or no longer (tests only).
void RefusePages(bool refuse);

}  // namespace dorvutil::platform
