#pragma once

#include <algorithm>

/// TVector's file and flattening members; included by memory/vector_inl.h alone.
#include "dorvutil/memory/block_io.h"

namespace dorvutil {

template <class T>
bool TVector<T>::WriteToFile(COrvFileHandleBase* handle, std::uint32_t start, std::uint32_t n) const {
    if (!handle || start >= Count()) return false;
    const std::uint32_t rest = Count() - start;
    if (n == 0 || n > rest) n = rest;
    return block_io::Write(handle, Elements() + start, std::size_t{n} * sizeof(T));
}

template <class T>
bool TVector<T>::WriteToFile(const ORVustring& path, bool append) const {
    return Count() == 0 || block_io::WriteFile(path, Elements(), ByteCount(), append);
}

template <class T>
bool TVector<T>::ReadFromFile(COrvFileHandleBase* handle, std::uint32_t n, bool append) {
    if (!handle) return false;
    if (n == 0) n = block_io::Remaining(handle) / static_cast<std::uint32_t>(sizeof(T));
    const std::uint32_t start = append ? Count() : 0;
    if (n > detail::kVectorMaxCount - start || !detail::IsPlausible(n, sizeof(T), block_io::Remaining(handle)) ||
        !SetSize(start + n)) {
        return false;
    }
    const std::size_t wanted = std::size_t{n} * sizeof(T);
    const std::size_t got = n == 0 ? 0 : block_io::Read(handle, Elements() + start, wanted);
    m_array.FillDefault(start + static_cast<std::uint32_t>(got / sizeof(T)), start + n, Rule());
    m_array.m_count = start + n;
    return got == wanted;
}

template <class T>
bool TVector<T>::ReadFromFile(const ORVustring& path, bool append) {
    COrvFileHandleBase* const handle = block_io::OpenToRead(path);
    const bool read = ReadFromFile(handle, 0, append);
    block_io::Close(handle);
    return read;
}

template <class T>
bool TVector<T>::FlattenMeAdmin(COrvFileHandleBase* handle) const {
    unsigned char bytes[kFlatBytes];
    std::memcpy(bytes, &m_default, sizeof(T));
    detail::StoreFlatHeader({m_fastFill, ChunkSize(), m_private, Capacity(), Count()}, bytes + sizeof(T));
    return block_io::Write(handle, bytes, kFlatBytes);
}

template <class T>
bool TVector<T>::UnflattenMeAdmin(COrvFileHandleBase* handle, bool keepDefault) {
    return ReadHeader(handle, keepDefault, false);
}

template <class T>
bool TVector<T>::FlattenMe(COrvFileHandleBase* handle) const {
    return FlattenMeAdmin(handle) && (Count() == 0 || block_io::Write(handle, Elements(), ByteCount()));
}

template <class T>
bool TVector<T>::UnflattenMe(COrvFileHandleBase* handle) {
    if (block_io::Length(handle) == 0 || !ReadHeader(handle, false, true)) return false;
    if (Count() == 0 || block_io::Read(handle, Elements(), ByteCount()) == ByteCount()) return true;
    Empty();
    return false;
}

template <class T>
bool TVector<T>::FlattenMeByItem(COrvFileHandleBase* handle) const {
    if (!FlattenMeAdmin(handle)) return false;
    for (const T& element : *this) {
        if (!block_io::Write(handle, &element, sizeof(T))) return false;
    }
    return true;
}

template <class T>
bool TVector<T>::UnflattenMeByItem(COrvFileHandleBase* handle) {
    if (block_io::Length(handle) == 0 || !ReadHeader(handle, false, true)) return false;
    for (T& element : *this) {
        if (block_io::Read(handle, &element, sizeof(T)) == sizeof(T)) continue;
        Empty();
        return false;
    }
    return true;
}

// With `elementsFollow` the bytes of all elements must be there before any memory is taken for them.
template <class T>
bool TVector<T>::ReadHeader(COrvFileHandleBase* handle, bool keepDefault, bool elementsFollow) {
    unsigned char bytes[kFlatBytes];
    if (block_io::Read(handle, bytes, kFlatBytes) != kFlatBytes) return false;
    const detail::FlatHeader header = detail::LoadFlatHeader(bytes + sizeof(T));
    const std::uint32_t remaining = block_io::Remaining(handle);
    const bool allThere = !elementsFollow || header.m_count <= remaining / sizeof(T);
    const std::uint32_t most = std::max({header.m_chunkSize, header.m_capacity, header.m_count});
    if (allThere && detail::IsPlausible(most, sizeof(T), remaining) && ApplyHeader(bytes, keepDefault)) return true;
    Empty();
    return false;
}

template <class T>
bool TVector<T>::ApplyHeader(const unsigned char* bytes, bool keepDefault) {
    const detail::FlatHeader header = detail::LoadFlatHeader(bytes + sizeof(T));
    if (!keepDefault) std::memcpy(static_cast<void*>(&m_default), bytes, sizeof(T));
    m_fastFill = header.m_fastFill;
    SetChunkSize(header.m_chunkSize);
    if (!m_ownsMemory) Empty();  // a wrapped array is not ours to resize
    m_private = header.m_private;
    return SetSize(header.m_capacity) && SetCount(header.m_count);
}

}  // namespace dorvutil
