#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "headless/breaches.h"
#include "headless/primitives.h"
#include "headless/scene_view.h"
#include "headless/session.h"
#include "host/animate.h"
#include "host/hold.h"
#include "host/interface.h"
#include "tests/support/matrices.h"
#include "tests/support/on_notification.h"

using Times = std::vector<TimeValue>;
using Lines = std::vector<std::string>;  // of breaches, or labels of steps

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

// What the objects of a test tell of themselves, in turn.
inline std::string told;
inline void ExpectTold(const std::string& expected) {
    EXPECT_EQ(std::exchange(told, {}), expected);
}

// A running host without plug-ins. Its end checks that nothing stays alive.
class HostWorld : public testing::Test {
  protected:
    HostWorld() { told.clear(); }
    ~HostWorld() override {
        session.ShutDown();
        EXPECT_EQ(headless::TakeCensus().objectCount, 0U);
        EXPECT_EQ(headless::TakeCensus().heapBlocks, 0U);
    }

    // A node with an empty mesh, under `parent` or at the top.
    INode* Add(const char* name, INode* parent = nullptr) {
        INode* node = host.CreateObjectNode(CreateNewTriObject());
        node->SetName(name);
        if (parent) parent->AttachChild(node, 0);
        return node;
    }

    Control* NewTransform() {
        return static_cast<Control*>(
            host.CreateInstance(CTRL_MATRIX3_CLASS_ID, kPositionRotationScaleClassId));
    }
    Control* NewFloat() {
        return static_cast<Control*>(host.CreateInstance(CTRL_FLOAT_CLASS_ID, kLinearFloatClassId));
    }

    // `change` as one undo step.
    void Step(const std::function<void()>& change, const char* label = "step") {
        theHold.Begin();
        change();
        theHold.Accept(label);
    }

    static void Place(INode* node, const Point3& at, TimeValue t = 0) {
        node->SetNodeTM(t, MovedBy(at));
    }
    static Point3 Where(INode* node) { return node->GetNodeTM(0).GetTrans(); }

    headless::Session session;
    Interface& host = *GetCOREInterface();
};
