#include "host/animatable.h"

// Empty: the class has given itself no name.
void Animatable::GetClassName(HostString& name) {
    name.clear();
}

void Animatable::FreeCaches() {}
void Animatable::BeginEditParams(IObjParam*, std::uint32_t, Animatable*) {}
void Animatable::EndEditParams(IObjParam*, std::uint32_t, Animatable*) {}

int Animatable::NumSubs() {
    return 0;
}
Animatable* Animatable::SubAnim(int) {
    return nullptr;
}
HostString Animatable::SubAnimName(int) {
    return {};
}
bool Animatable::AssignController(Animatable*, int) {
    return false;
}

int Animatable::NumKeys() {
    return 0;
}
TimeValue Animatable::GetKeyTime(int) {
    return 0;
}
int Animatable::GetKeyIndex(TimeValue) {
    return -1;
}
bool Animatable::GetNextKeyTime(TimeValue, std::uint32_t, TimeValue&) {
    return false;
}
void Animatable::DeleteKeyAtTime(TimeValue) {}
bool Animatable::IsKeyAtTime(TimeValue, std::uint32_t) {
    return false;
}
int Animatable::GetKeyTimes(Tab<TimeValue>&, Interval, std::uint32_t) {
    return 0;
}
void Animatable::DeleteTime(Interval, std::uint32_t) {}
void Animatable::DeleteKeys(std::uint32_t) {}
void Animatable::DeleteKeyByIndex(int) {}
void Animatable::SelectKeys(TrackHitTab&, std::uint32_t) {}
void Animatable::SelectKeyByIndex(int, std::uint32_t) {}
void Animatable::MouseCycleCompleted(TimeValue) {}
void Animatable::MouseCycleStarted(TimeValue) {}
