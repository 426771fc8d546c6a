#pragma once

#include <cstddef>

#include "dorvutil/memory/dl_chunk.h"

/// Chunks on pages of their own. They have no neighbours: only the owner of the block ever touches them, so that none
/// of this needs the heap's lock. Their seal is the last word of their pages.
namespace dorvutil::dl {

/// Chunks of this size and above are mapped when no freed memory can serve them.
inline constexpr std::size_t kLeastMapped = 0x40000;

/// A new chunk of at least `size` bytes; null when the system refuses.
[[nodiscard]] Chunk* MapChunk(std::size_t size);
void UnmapChunk(Chunk* chunk);

/// Gives the chunk another size, perhaps at another place; null, with nothing changed, when the system refuses.
[[nodiscard]] Chunk* RemapChunk(Chunk* chunk, std::size_t size);

/// Ends the process when the seal is broken.
void RequireMapped(Chunk* chunk);

}  // namespace dorvutil::dl
