#include "dorvutil/storage/file_handle.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace dorvutil {
namespace {

// Where the line ends: the first line feed, else the first character of all bits set, else null.
template <class C>
const C* FindLineEnd(const C* text, std::uint32_t length) {
    if (length == 0) return nullptr;
    const C* const lineFeed = std::char_traits<C>::find(text, length, C{'\n'});
    return lineFeed ? lineFeed : std::char_traits<C>::find(text, length, static_cast<C>(-1));
}

template <class C>
C* Deliver(const C* text, std::uint32_t length, C* buffer) {
    std::copy_n(text, length, buffer);
    buffer[length] = C{};
    return buffer;
}

}  // namespace

COrvFileHandleBase::COrvFileHandleBase(const ORVustring& path, eAccessMode access, eBinaryMode binary,
                                       std::uint32_t flags, const COrvFileOptions* options)
    : m_path(path), m_access(access), m_binary(binary), m_flags(flags) {
    if (options && options->m_readBufferSize != 0) m_lineBlockSize = options->m_readBufferSize;
}

COrvFileHandleBase::~COrvFileHandleBase() = default;

bool COrvFileHandleBase::LockBytes(std::uint32_t, bool, bool) { return false; }

std::int32_t COrvFileHandleBase::StopRead() { return 0; }

std::int32_t COrvFileHandleBase::StopWrite() { return 0; }

char* COrvFileHandleBase::ReadLine(char* buffer, std::uint32_t size) { return ReadLineFrom(m_lineBlock, buffer, size); }

char16_t* COrvFileHandleBase::ReadLine(char16_t* buffer, std::uint32_t size) {
    return ReadLineFrom(m_wideLineBlock, buffer, size);
}

void COrvFileHandleBase::ResetReadLineBuffer() {
    m_lineBlock.Empty();
    m_wideLineBlock.Empty();
    m_linePosition = 0;
}

template <class C>
C* COrvFileHandleBase::ReadLineFrom(TLineBlock<C>& block, C* buffer, std::uint32_t size) {
    if (!IsOpen() || !buffer || size == 0) return nullptr;
    for (;;) {
        const C* const text = block.Data() + m_linePosition;
        const std::uint32_t unread = block.Count() - m_linePosition;
        if (const C* const end = FindLineEnd(text, unread)) {
            const auto length = static_cast<std::uint32_t>(end - text);
            m_linePosition += length + 1;
            if (length >= size) return Deliver(text, size - 1, buffer);
            return Deliver(text, length != 0 && text[length - 1] == C{'\r'} ? length - 1 : length, buffer);
        }
        if (unread >= m_lineBlockSize) {  // the line is longer than a block: its rest stays for the next call
            const std::uint32_t length = std::min(size - 1, unread);
            m_linePosition += length;
            return Deliver(text, length, buffer);
        }
        if (FillBlock(block)) continue;
        m_linePosition = block.Count();
        return unread == 0 ? nullptr : Deliver(block.Data(), std::min(size - 1, unread), buffer);
    }
}

// Moves the unread part to the front and tops the block up; false when nothing more could be read.
template <class C>
bool COrvFileHandleBase::FillBlock(TLineBlock<C>& block) {
    if (m_linePosition != 0) block.Shift(-static_cast<std::int32_t>(m_linePosition));
    m_linePosition = 0;
    const std::uint32_t unread = block.Count();
    if (!block.SetCount(m_lineBlockSize)) return false;
    const auto wanted = static_cast<std::uint32_t>((m_lineBlockSize - unread) * sizeof(C));
    const std::uint32_t got = Read(block.Data() + unread, wanted, 1);
    const std::uint32_t added = got <= wanted ? got / static_cast<std::uint32_t>(sizeof(C)) : 0;
    block.SetCount(unread + added);
    return added != 0;
}

}  // namespace dorvutil
