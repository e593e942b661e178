#include "controllers/change_notification.h"

#include "host/reference.h"

void AnnounceChange(ReferenceTarget& changed) {
    changed.NotifyDependents(FOREVER, PART_ALL, REFMSG_CHANGE, NOTIFY_ALL, true, nullptr);
}
