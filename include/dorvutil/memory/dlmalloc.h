#pragma once

#include <cstddef>

#include "dorvutil/frame/export.h"

/// A general-purpose heap of the library's own, after the published design of Doug Lea's allocator ("A Memory
/// Allocator", 1996 to 2012). It takes memory from the operating system and shares nothing with the heap of the C
/// runtime: blocks of the one must not be given to the other.
///
/// Blocks start at multiples of two pointers (16 bytes where pointers have 64 bits). Beside the block a word is spent,
/// and no block takes less than four words. Requests of 256 KiB and above that no freed memory can serve get pages of
/// their own, which go back to the system when the block is freed; of the rest, more than 2 MiB of unused memory at the
/// end of the heap goes back, and so does every 64 MiB stretch of addresses in which nothing is left.
///
/// Any thread, one at a time: calls are short and spin on one lock. Blocks may be freed by another thread than took
/// them. A thread that is ended inside a call leaves the lock held for good, and so does a fork during another thread's
/// call in the child.
///
/// A block that is freed or resized must be one in use. One that is not, because it was freed before or because its
/// surroundings were overwritten, ends the process with a line on standard error when that is noticed. Release builds
/// notice what the words beside the block tell at no cost. Builds without NDEBUG also close every block with a seal (a
/// further word), look it up among the heap's memory, and so notice writes beyond its end.
namespace dorvutil {

extern "C" {

/// At least `size` bytes, uninitialised; the smallest block for 0. Null when memory runs out, and for sizes beyond half
/// the address space.
[[nodiscard]] DORVUTIL_API void* dlmalloc(std::size_t size);

/// Takes a block back. Null is allowed and ignored.
DORVUTIL_API void dlfree(void* p);

/// Gives a block another size, where it is if possible: the bytes up to the smaller of both sizes stay, the rest is
/// uninitialised. Returns the block, which is then the caller's in place of `p`; null, with `p` unchanged, when
/// dlmalloc would fail. A null `p` makes it dlmalloc; a size of 0 keeps the smallest block and does not free it.
[[nodiscard]] DORVUTIL_API void* dlrealloc(void* p, std::size_t size);

}  // extern "C"

}  // namespace dorvutil
