#pragma once

// Marks what the platform library exports. On Windows it is linked into each module instead.
#if defined(_WIN32)
#define PLATFORM_API
#else
#define PLATFORM_API __attribute__((visibility("default")))
#endif
