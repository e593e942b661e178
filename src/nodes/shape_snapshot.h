#pragma once

#include <array>

#include "host/types.h"
#include "nodes/max_node.h"
#include "nodes/shown_object.h"

// The curves of a shape at one tick, asked of the host at each call. Once the node is gone or shows
// another object, there are no curves; a curve that is not there has length 0 and lies at the
// origin.
// The order of the fields is part of the contract.
class CMAXNode::CMAXSnapshot_Shape final : public TVL::CoreNode::Snapshot_Shape,
                                           public OrphanedSnapshot {
  public:
    explicit CMAXSnapshot_Shape(CMAXNode& lender);

    // The current curve stays what was last set on this snapshot.
    void Acquire(const ShownObject& shape, double time);
    void Release() { acquired = false; }
    bool IsAcquired() const { return acquired; }

    // The node has died.
    void LoseNode();

    int GetCurveCount() override;
    int GetCurve() override { return curve; }
    void SetCurve(int index) override;
    double GetCurveLength() override;
    std::array<double, 3> GetCurvePoint(double parameter) override;
    std::array<double, 3> GetCurveTangent(double parameter) override;

  private:
    int Count() const;
    std::array<double, 3> Point(double parameter) const;
    ShapeObject* ShapeWithCurve() const;  // null: the current curve is not there

    ShownObject hostObject;
    TimeValue ticks = 0;
    double seconds = 0;
    int curve = 0;
};
