#pragma once

#include "host/notify.h"

class UtilityManager;

// What the host tells of its scene. While no Core is attached, every event but the host's shutdown
// passes without effect.
void RegisterHostEvents(UtilityManager& manager);
void UnregisterHostEvents(UtilityManager& manager);

// Selected nodes are about to be deleted: the Core stops, and each owner of such nodes hears of it
// once. See nodes_pre_delete.cpp.
void OnNodesPreDelete(void* manager, NotifyInfo* info);
