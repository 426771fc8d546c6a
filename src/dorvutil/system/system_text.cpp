#include "dorvutil/logging/system_text.h"

#include "dorvutil/system/sys_attr.h"

namespace dorvutil {

// Not the registry's attributes: those go before the log manager, which may just be opening a file.
ORVustring SystemText() {
    ORVustring text;
    CSysAttr().DumpAllSysAttrStrings(text);
    return text;
}

}  // namespace dorvutil
