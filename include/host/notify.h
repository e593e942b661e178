#pragma once

#include "host/host_api.h"

// Broadcast by the host on its main thread.
inline constexpr int NOTIFY_SYSTEM_PRE_RESET = 5;
inline constexpr int NOTIFY_SYSTEM_PRE_NEW = 7;
inline constexpr int NOTIFY_FILE_PRE_OPEN = 9;  // callParam: int*, the kind of file
inline constexpr int NOTIFY_FILE_POST_OPEN = 10;
inline constexpr int NOTIFY_FILE_POST_MERGE = 12;
inline constexpr int NOTIFY_FILE_PRE_SAVE = 13;
inline constexpr int NOTIFY_FILE_POST_SAVE = 14;        // also after a save that failed
inline constexpr int NOTIFY_SEL_NODES_PRE_DELETE = 70;  // callParam: INodeTab*
inline constexpr int NOTIFY_SYSTEM_SHUTDOWN = 73;

struct NotifyInfo {
    int intcode = 0;
    void* callParam = nullptr;
};

using NOTIFYPROC = void (*)(void* param, NotifyInfo* info);

// A callback is identified by its procedure, its parameter and the code.
HOST_API int RegisterNotification(NOTIFYPROC proc, void* param, int code);
HOST_API int UnRegisterNotification(NOTIFYPROC proc, void* param, int code);
