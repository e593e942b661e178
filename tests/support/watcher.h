#pragma once

#include <functional>
#include <utility>

#include "host/reference.h"

// Acts at each change that it hears of what it is made to refer to, which goes with the reference
// if nobody else refers to it.
struct Watcher : ReferenceMaker {
    explicit Watcher(std::function<void()> does) : act(std::move(does)) {}
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
