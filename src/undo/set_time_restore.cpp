#include "undo/set_time_restore.h"

#include <utility>

void CSetTimeRestoreObj::Undo(bool isUndo) {
    const double here = CurrentSeconds();
    SetCurrentSeconds(time);
    if (isUndo) time = here;
}
