#include "host/class_desc.h"
#include "host/gup.h"
#include "host/utility_obj.h"

ClassDesc::~ClassDesc() = default;

GUP::~GUP() = default;

void* GUP::GetInterface(std::uint32_t) {
    return nullptr;
}

HINSTANCE GUP::MaxInst() {
    return nullptr;
}

HWND GUP::MaxWnd() {
    return Max()->GetMAXHWnd();
}

const char* GUP::MaxDllDir() {
    return "";
}

Interface* GUP::Max() {
    return GetCOREInterface();
}

void* GUP::Bmi() {
    return nullptr;
}

int GUP::EnumTree(ITreeEnumProc*) {
    return 0;
}

// There is no file that this host would understand.
int GUP::ExecuteFileScript(const char*, int*) {
    return 0;
}

std::uint32_t GUP::Control(std::uint32_t) {
    return 0;
}

IOResult GUP::Save(ISave*) {
    return IO_OK;
}

IOResult GUP::Load(ILoad*) {
    return IO_OK;
}

UtilityObj::~UtilityObj() = default;

void UtilityObj::SelectionSetChanged(Interface*, IUtil*) {}

void UtilityObj::SetStartupParam(HostString) {}
