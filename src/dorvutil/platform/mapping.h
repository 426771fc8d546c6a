#pragma once

#include <cstddef>
#include <cstdint>

/// Files and named memory in the address space. Any thread.
namespace dorvutil::platform {

/// Maps all of an existing file for reading; null when it is missing, empty, or no regular file. Ended by UnmapView.
const void* MapFile(const char16_t* path, std::uint64_t& size);

struct SharedMemoryObject;

/// Creates zeroed memory under a name shared by this user's processes, or opens what is there in the same size. Null
/// otherwise, for an empty name and size 0. The memory lives until the last opener has closed it and ended its views; a
/// killed process counts as having done so. Ended by CloseSharedMemory.
SharedMemoryObject* OpenSharedMemory(const char16_t* name, std::uint32_t size);
void CloseSharedMemory(SharedMemoryObject* object);

/// A view of all the memory, for reading and writing, which outlives the object; null when memory ran out. Views of one
/// name share their address within the process. Ended by UnmapView.
void* MapSharedMemory(SharedMemoryObject* object);

/// Ends one view; false when there is none at that address.
bool UnmapView(const void* view);

}  // namespace dorvutil::platform
