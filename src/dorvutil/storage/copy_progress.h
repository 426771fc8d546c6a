#pragma once

namespace dorvutil {

class CB_Dialog;

/// What copying asks of a progress dialog; defined in the messaging layer, which lies above. A null dialog takes steps
/// and is never cancelled.
void StepCopyProgress(CB_Dialog* dialog);
bool IsCopyCancelled(const CB_Dialog* dialog);

}  // namespace dorvutil
