#pragma once

// Marks what the stand-in host offers to those who drive it: exported by its library, imported by
// everybody else.
#if defined(_WIN32) && defined(LUMISET_BUILDS_HOST)
#define HEADLESS_API __declspec(dllexport)
#elif defined(_WIN32)
#define HEADLESS_API __declspec(dllimport)
#else
#define HEADLESS_API __attribute__((visibility("default")))
#endif
