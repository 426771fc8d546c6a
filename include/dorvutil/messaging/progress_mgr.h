#pragma once

#include <cstdint>

#include "dorvutil/concurrency/sync.h"
#include "dorvutil/memory/vector.h"

namespace dorvutil {

class ORVustring;
class ProgressInfo;

/// All progress states. There is one, owned by the registry: GetProgressMgr. Its lock guards every state, is recursive,
/// and is held while observers run. Callers of the operations below hold it; each look-up adds one reference to the
/// state it returns and gives null when memory ran out.
class ProgressMgr : public CCustomSync {
public:
    ProgressMgr();
    /// States that handles still refer to live on, empty and out of reach, until the last of those handles ends.
    ~ProgressMgr() override;

    /// The first state with this name, byte for byte; a new one when there is none.
    ProgressInfo* FindOrCreate(const ORVustring& name);
    /// The first state with this event identifier, or null.
    ProgressInfo* FindByEventId(std::uint32_t eventId);
    /// A new state, named "FakeEvent #" and its event identifier.
    ProgressInfo* CreateAnonymous();
    /// Forgets a state, which its last holder is about to delete.
    void Remove(const ProgressInfo* info);

private:
    ProgressInfo* Create(const ORVustring& name);

    TVector<ProgressInfo*> m_infos;   // owned through their reference counts
    TVector<std::uint32_t> m_hashes;  // of their names, same indexes: a look-up touches few of many states
    std::uint32_t m_nextEventId = 0;
};

}  // namespace dorvutil
