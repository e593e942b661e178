#pragma once

#include <cstdint>

#include "host/heap.h"
#include "host/interface.h"
#include "host/storage.h"

inline constexpr std::uint32_t GUPRESULT_KEEP = 0;
inline constexpr std::uint32_t GUPRESULT_NOKEEP = 1;

class ITreeEnumProc;

// A global utility plug-in: started with the host, stopped with it.
class HOST_API GUP : public MaxHeapOperators {
  public:
    virtual void* GetInterface(std::uint32_t id);
    virtual ~GUP();

    virtual HINSTANCE MaxInst();
    virtual HWND MaxWnd();
    virtual const char* MaxDllDir();
    virtual Interface* Max();
    virtual void* Bmi();  // the stand-in host has no bitmap manager
    virtual int EnumTree(ITreeEnumProc* procedure);

    // Runs a script; non-zero if the host understood it.
    virtual int ExecuteStringScript(const char* text, int* length = nullptr);
    virtual int ExecuteFileScript(const char* file, int* length = nullptr);

    virtual std::uint32_t Start() = 0;
    virtual void Stop() = 0;
    virtual std::uint32_t Control(std::uint32_t parameter);

    // Inside a scene save or load, between the host's notifications.
    virtual IOResult Save(ISave* save);
    virtual IOResult Load(ILoad* load);

    virtual void DeleteThis() = 0;
};
