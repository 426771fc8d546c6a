#pragma once

#include <cstddef>

/// Memory shared by name between the processes of one user, with the lifetime of a kernel object: it appears with its
/// first opener and is gone when the last one closes it, ends or is killed.
namespace dorvutil::platform {

/// One process's hold on a name. A process maps a name once, however often it opens it, so that an address written into
/// the shared memory by one opener (the list of robust mutexes does that) stays mapped until all have closed.
struct NamedObject;

/// What is kept under a name. The kinds have name spaces of their own.
struct NamedKind {
    char letter;                                         ///< Tells the kind in the name of the shared memory.
    std::size_t bodySize;                                ///< Bytes of shared memory, zeroed, aligned to 64.
    bool (*construct)(void* body, const void* setting);  ///< Run once for each name, before any opener sees the body.
    void (*leave)(void* body);                           ///< Run before the process unmaps the body (may be null).
};

/// Opens or creates. `name` is not empty; any UTF-16 will do. Null when the system refuses. Any thread.
NamedObject* OpenNamed(const NamedKind& kind, const char16_t* name, const void* setting);
void* BodyOf(NamedObject* object);

/// Takes one more opening of an object that is open.
void ReopenNamed(NamedObject* object);

/// Takes one opening back; with the last one of the process the memory is unmapped, and with the last one of all the
/// name is free again. A process forked off while a name was open may go on using it but does not prolong its life.
void CloseNamed(NamedObject* object);

}  // namespace dorvutil::platform
