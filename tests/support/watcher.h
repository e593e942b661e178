#pragma once

#include <functional>

#include "host/reference.h"

// Refers to something, and acts at each change of it that it hears of. Whoever makes one destroys
// it, too.
struct Watcher : ReferenceMaker {
    Watcher(ReferenceTarget* watched, std::function<void()> does) : act(std::move(does)) {
        ReplaceReference(0, watched);
    }
    SClass_ID SuperClassID() override { return 1; }
    Class_ID ClassID() override { return {1, 1}; }
    void DeleteThis() override {}
    int NumRefs() override { return 1; }
    RefTargetHandle GetReference(int) override { return target; }
    void SetReference(int, RefTargetHandle to) override { target = to; }
    RefResult NotifyRefChanged(Interval, RefTargetHandle, PartID&, RefMessage) override {
        act();
        return REF_SUCCEED;
    }

    RefTargetHandle target = nullptr;
    std::function<void()> act;
};
