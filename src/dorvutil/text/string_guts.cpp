#include "dorvutil/text/string_guts.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "dorvutil/text/basic_string.h"
#include "dorvutil/text/string_storage.h"

namespace dorvutil {

template <>
constinit ConstStringGuts<char> ConstStringGuts<char>::s_empty(EmptyTag(), &TOrvString<char>::m_NULL);
template <>
constinit ConstStringGuts<char16_t> ConstStringGuts<char16_t>::s_empty(EmptyTag(), &TOrvString<char16_t>::m_NULL);

template <class T>
StringGuts<T>* StringGuts<T>::Empty() noexcept {
    return &ConstStringGuts<T>::s_empty;
}

// operator new gives the shared empty block for capacity 0: setting it up once more leaves it what it is.
template <class T>
StringGuts<T>::StringGuts(std::uint16_t capacity) noexcept
    : m_data(capacity == 0 ? const_cast<T*>(&TOrvString<T>::m_NULL) : InlineBuffer()),
      m_capacity(capacity),
      m_source(capacity == 0 ? GutsSource::kEmpty : GutsSource::kUnknown) {
    if (capacity != 0) std::memset(m_data, 0, (std::size_t{capacity} + 1) * sizeof(T));
}

template <class T>
StringGuts<T>::StringGuts(const StringGuts& source, std::uint16_t capacity) noexcept : StringGuts(capacity) {
    m_length = std::min(source.m_length, capacity);
    std::memcpy(m_data, source.m_data, m_length * sizeof(T));
}

template <class T>
StringGuts<T>* StringGuts<T>::share() const {
    if (Counted()) {
        if (m_references == 255) return CreateCopy(*this, m_capacity);
        ++m_references;
    }
    return const_cast<StringGuts*>(this);
}

template <class T>
void StringGuts<T>::release() {
    if (Counted() && --m_references == 0) Free(this);
}

template <class T>
StringGuts<T>* StringGuts<T>::takeback() {
    if (m_references < 2 || m_capacity == 0) return this;
    StringGuts* const copy = CreateCopy(*this, m_capacity);
    if (copy) release();
    return copy;
}

template <class T>
StringGuts<T>* StringGuts<T>::Create(std::uint32_t capacity) noexcept {
    return CreateUnfilled(capacity, 0);
}

template <class T>
StringGuts<T>* StringGuts<T>::CreateCopy(const StringGuts& source, std::uint32_t capacity) noexcept {
    const std::uint32_t length = std::min<std::uint32_t>(source.m_length, capacity);
    StringGuts* const block = CreateUnfilled(capacity, length);
    if (block && length != 0) std::memcpy(block->m_data, source.m_data, length * sizeof(T));
    return block;
}

template <class T>
StringGuts<T>* StringGuts<T>::CreateUnfilled(std::uint32_t capacity, std::uint32_t length) noexcept {
    const std::uint32_t rounded = CapacityFor(capacity);
    if (rounded == 0) return Empty();
    if (rounded == kNoCapacity) return nullptr;
    GutsSource source = GutsSource::kUnknown;
    void* const storage = AllocBlock<T>(rounded, source);
    if (storage == nullptr) return nullptr;
    auto* const data = reinterpret_cast<T*>(static_cast<char*>(storage) + sizeof(StringGuts));
    std::memset(data + length, 0, (rounded + 1 - length) * sizeof(T));
    return ::new (storage)
        StringGuts(data, static_cast<std::uint16_t>(length), static_cast<std::uint16_t>(rounded), source);
}

template <class T>
StringGuts<T>* StringGuts<T>::re_alloc(StringGuts* guts, std::uint32_t n) {
    const std::uint32_t capacity = CapacityFor(n);
    if (capacity == kNoCapacity) return nullptr;
    if (guts == nullptr) return Create(capacity);
    if (guts->Private() && guts->m_capacity >= capacity) return guts;
    StringGuts* const block = CreateCopy(*guts, capacity);
    if (block) guts->release();
    return block;
}

template <class T>
void StringGuts<T>::zerofill() {
    if (m_source == GutsSource::kEmpty) return;
    std::memset(m_data + m_length, 0, (std::size_t{m_capacity} + 1 - m_length) * sizeof(T));
    m_flags |= kChanged;
}

template <class T>
void StringGuts<T>::SetLength(std::uint32_t length) noexcept {
    if (length < m_length) std::memset(m_data + length, 0, (m_length - length) * sizeof(T));
    m_length = static_cast<std::uint16_t>(length);
}

template <class T>
void StringGuts<T>::Free(StringGuts* block) noexcept {
    if (block->m_capacity != 0) FreeBlock<T>(block, block->m_capacity, block->m_source);
}

template <class T>
void* StringGuts<T>::operator new(std::size_t, std::int32_t capacity) noexcept {
    if (capacity == 0) return Empty();
    const std::uint32_t rounded = CapacityFor(static_cast<std::uint32_t>(capacity));
    GutsSource source = GutsSource::kUnknown;
    return rounded == kNoCapacity ? nullptr : AllocBlock<T>(rounded, source);
}

template <class T>
void StringGuts<T>::operator delete(void* block, std::int32_t capacity) noexcept {
    if (block && capacity > 0) FreeBlock<T>(block, static_cast<std::uint32_t>(capacity), GutsSource::kUnknown);
}

template <class T>
void StringGuts<T>::operator delete(void* block) noexcept {
    if (block) Free(static_cast<StringGuts*>(block));
}

template <class T>
StringGuts<T>* ConstStringGuts<T>::share() const {
    return const_cast<ConstStringGuts*>(this);
}

template <class T>
void ConstStringGuts<T>::release() {}

template <class T>
StringGuts<T>* ConstStringGuts<T>::takeback() {
    return StringGuts<T>::CreateCopy(*this, this->Capacity());
}

template class StringGuts<char>;
template class StringGuts<char16_t>;
template class ConstStringGuts<char>;
template class ConstStringGuts<char16_t>;

}  // namespace dorvutil
