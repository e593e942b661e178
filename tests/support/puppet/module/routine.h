#pragma once

// Marks a routine of the puppet Core's.
#if defined(_WIN32)
#define PUPPET_ROUTINE extern "C" __declspec(dllexport)
#else
#define PUPPET_ROUTINE extern "C" __attribute__((visibility("default")))
#endif
