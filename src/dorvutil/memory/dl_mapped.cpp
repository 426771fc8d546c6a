#include "dorvutil/memory/dl_mapped.h"

#include "dorvutil/platform/pages.h"

namespace dorvutil::dl {
namespace {

std::size_t PagesFor(std::size_t size) { return RoundUp(size, platform::PageSize()); }

[[maybe_unused]] std::size_t& SealOf(Chunk* chunk) { return chunk->At(chunk->Size() - kAlignment)->m_head; }

Chunk* Describe(void* pages, std::size_t size) {
    auto* const chunk = static_cast<Chunk*>(pages);
    chunk->m_head = size | Chunk::kInUse | Chunk::kMapped;
    if constexpr (kSealed) SealOf(chunk) = chunk->Seal();
    return chunk;
}

}  // namespace

Chunk* MapChunk(std::size_t size) {
    // Without a chunk behind, the word of that chunk which belongs to the block must lie within.
    const std::size_t bytes = PagesFor(size + kWord);
    void* const pages = platform::MapPages(bytes);
    return pages ? Describe(pages, bytes) : nullptr;
}

void UnmapChunk(Chunk* chunk) { platform::UnmapPages(chunk, chunk->Size()); }

Chunk* RemapChunk(Chunk* chunk, std::size_t size) {
    const std::size_t bytes = PagesFor(size + kWord);
    if (bytes == chunk->Size()) return chunk;
    void* const pages = platform::RemapPages(chunk, chunk->Size(), bytes);
    return pages ? Describe(pages, bytes) : nullptr;
}

void RequireMapped(Chunk* chunk) {
    if constexpr (kSealed) {
        if (SealOf(chunk) != chunk->Seal()) HeapFault("a block was written to beyond its end", chunk->Block());
    }
}

}  // namespace dorvutil::dl
