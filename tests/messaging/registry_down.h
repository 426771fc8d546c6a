#pragma once

#include "dorvutil/frame/registry.h"

namespace dorvutil::testing_support {

/// The registry, in use before, is torn down until BringBack, which makes all managers anew.
class RegistryDown {
public:
    RegistryDown() {
        static const bool once = (GetORVUtilGlobals()->ObtainRef(), true);  // the reference that is let go here
        static_cast<void>(once);
        GetORVUtilGlobals()->ReleaseRef(true);
    }
    ~RegistryDown() {
        if (m_down) BringBack();
    }
    void BringBack() {
        m_down = false;
        GetORVUtilGlobals()->ObtainRef();
    }

private:
    bool m_down = true;
};

}  // namespace dorvutil::testing_support
