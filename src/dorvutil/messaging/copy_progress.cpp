#include "dorvutil/storage/copy_progress.h"

#include "dorvutil/messaging/progress.h"

namespace dorvutil {

void StepCopyProgress(CB_Dialog* dialog) {
    if (dialog) dialog->Step(1);
}

bool IsCopyCancelled(const CB_Dialog* dialog) { return dialog && dialog->Is_Cancelled(); }

}  // namespace dorvutil
