#include "dorvutil/system/shared_memory.h"

#include <cstring>

#include "dorvutil/platform/mapping.h"
#include "dorvutil/system/system_info.h"

namespace dorvutil {
namespace {

constexpr std::uint32_t kSizeBytes = 4;  // of the stored size, in front of the data

}  // namespace

SharedMemory::SharedMemory(const char* name, const char* mutexName, std::uint32_t size, MemoryMap_Protection protection)
    : m_mutex(mutexName) {
    AllocateMemory(name, size, protection);
}

SharedMemory::~SharedMemory() {
    const TScopedLock<mutex> hold(m_mutex);
    Release();
}

void SharedMemory::Release() {
    // After the tear-down of the registry there is no manager to ask.
    if (!System_MemoryUnMapFile(m_view)) platform::UnmapView(m_view);
    System_CloseSharedMemMapping(m_mapping);
    m_view = nullptr;
    m_mapping = nullptr;
    m_usableSize = 0;
}

bool SharedMemory::AllocateMemory(const char* name, std::uint32_t size, MemoryMap_Protection protection) {
    const TScopedLock<mutex> hold(m_mutex);
    Release();
    if (size < kSizeBytes) return false;
    m_mapping = System_CreateSharedMemMapping(name, size, protection);
    m_view = m_mapping ? static_cast<unsigned char*>(System_MapMemView(m_mapping)) : nullptr;
    if (!m_view) {
        Release();
        return false;
    }
    m_usableSize = size - kSizeBytes;
    m_protection = protection;
    return true;
}

std::uint32_t SharedMemory::ReadDataSize() const {
    const TScopedLock<mutex> hold(m_mutex);
    std::uint32_t size = 0;
    if (!m_view) return size;
    for (std::uint32_t i = 0; i < kSizeBytes; ++i) size |= std::uint32_t{m_view[i]} << (8 * i);
    return size;
}

bool SharedMemory::ReadData(void* buffer, std::uint32_t n) const {
    const TScopedLock<mutex> hold(m_mutex);
    if (!HasRoomFor(n) || (!buffer && n != 0)) return false;
    if (n != 0) std::memcpy(buffer, m_view + kSizeBytes, n);
    return true;
}

bool SharedMemory::WriteData(const void* data, std::uint32_t n) {
    const TScopedLock<mutex> hold(m_mutex);
    if (!HasRoomFor(n) || m_protection == eMemoryMapReadOnly || (!data && n != 0)) return false;
    for (std::uint32_t i = 0; i < kSizeBytes; ++i) m_view[i] = static_cast<unsigned char>(n >> (8 * i));
    if (n != 0) std::memcpy(m_view + kSizeBytes, data, n);
    return true;
}

SharedMemory::operator bool() const {
    const TScopedLock<mutex> hold(m_mutex);
    return m_view != nullptr;
}

}  // namespace dorvutil
