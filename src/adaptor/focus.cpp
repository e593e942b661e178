#include "adaptor/focus.h"

#include <utility>

#include "host/interface.h"
#include "tvl/log.h"

void RequestFocus(FocusState& focus) {
    TVL::Log(TVL::Log::kNotice).Write("Requesting focus");
    if (focus.focusCount == 0) GetCOREInterface()->DisableAccelerators();
    ++focus.focusCount;
}

void RestoreFocus(FocusState& focus) {
    TVL::Log(TVL::Log::kNotice).Write("Restoring focus");
    --focus.focusCount;
    if (focus.focusCount == 0) GetCOREInterface()->EnableAccelerators();
}

bool TakeFocusBack(FocusState& focus) {
    const bool isOut = std::exchange(focus.focusCount, 0) > 0;
    if (isOut) GetCOREInterface()->EnableAccelerators();
    return isOut;
}
