#include "dorvutil/messaging/progress_mgr.h"

#include <new>

#include "dorvutil/messaging/progress_info.h"

namespace dorvutil {

ProgressMgr::ProgressMgr() = default;

ProgressMgr::~ProgressMgr() {
    const TScopedLock<CCustomSync> lock(*this);
    // All of them are kept until none refers to another, so that none goes while the list is walked.
    for (ProgressInfo* const info : m_infos) info->AddRef();
    for (ProgressInfo* const info : m_infos) info->ReleaseChildren();
    for (ProgressInfo* const info : m_infos) {
        info->LeaveManager();
        info->DropRef();
    }
}

ProgressInfo* ProgressMgr::FindOrCreate(const ORVustring& name) {
    const std::uint32_t hash = HashOfName(name);
    for (std::uint32_t i = 0; i < m_hashes.Count(); ++i) {
        if (m_hashes[i] == hash && m_infos[i]->Name() == name) {
            m_infos[i]->AddRef();
            return m_infos[i];
        }
    }
    return Create(name);
}

ProgressInfo* ProgressMgr::FindByEventId(std::uint32_t eventId) {
    for (ProgressInfo* const info : m_infos) {
        if (info->EventId() == eventId) {
            info->AddRef();
            return info;
        }
    }
    return nullptr;
}

ProgressInfo* ProgressMgr::CreateAnonymous() {
    ORVustring name("FakeEvent #");
    name += ORVustring::ultoa(m_nextEventId);
    return Create(name);
}

ProgressInfo* ProgressMgr::Create(const ORVustring& name) {
    auto* const info = new (std::nothrow) ProgressInfo(this, name, m_nextEventId);
    if (!info) return nullptr;
    if (m_infos.Add(info) < 0 || m_hashes.Add(HashOfName(info->Name())) < 0) {
        if (m_infos.Last() == info) m_infos.DeleteAt(m_infos.Count() - 1);
        delete info;
        return nullptr;
    }
    ++m_nextEventId;
    info->AddRef();
    return info;
}

void ProgressMgr::Remove(const ProgressInfo* info) {
    const std::uint32_t i = m_infos.FindR(const_cast<ProgressInfo*>(info));
    if (i == kVectorNotFound) return;
    m_infos.DeleteAt(i);
    m_hashes.DeleteAt(i);
}

}  // namespace dorvutil
