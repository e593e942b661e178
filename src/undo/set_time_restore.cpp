#include "undo/set_time_restore.h"

#include "measures/host_clock.h"

void CSetTimeRestoreObj::Undo(bool isUndo) {
    const double here = CurrentSeconds();
    SetCurrentSeconds(time);
    if (isUndo) time = here;
}
