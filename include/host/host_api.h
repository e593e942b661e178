#pragma once

// Marks what the host provides: exported by the host's library, imported by everybody else.
#if defined(_WIN32) && defined(LUMISET_BUILDS_HOST)
#define HOST_API __declspec(dllexport)
#elif defined(_WIN32)
#define HOST_API __declspec(dllimport)
#else
#define HOST_API __attribute__((visibility("default")))
#endif
