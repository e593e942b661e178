#pragma once

#include "host/host_api.h"
#include "host/types.h"

// Describes one class of a plug-in library to the host.
class HOST_API ClassDesc {
  public:
    virtual ~ClassDesc();
    virtual int IsPublic() = 0;  // 0 keeps the class out of the host's creation lists
    virtual void* Create(bool loading = false) = 0;
    virtual const char* ClassName() = 0;
    virtual SClass_ID SuperClassID() = 0;
    virtual Class_ID ClassID() = 0;
    virtual const char* Category() = 0;
};

// The routines that a plug-in library exports, with their ordinals.
using LibDescriptionRoutine = const char*();  // 1
using LibNumberClassesRoutine = int();        // 2
using LibClassDescRoutine = ClassDesc*(int);  // 3
using LibVersionRoutine = std::uint32_t();    // 4

// What LibVersion of a library for this host gives.
inline constexpr std::uint32_t kHostVersion = 0x23281500;
