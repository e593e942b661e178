#pragma once

#include "headless/references/object_watch.h"
#include "host/hold.h"
#include "host/reference.h"

// The record of one reference that was pointed elsewhere. It does nothing any more once one of the
// objects that it names has been destroyed by its creator.
class ReferenceRecord final : public RestoreObj {
  public:
    ReferenceRecord(ReferenceMaker& maker, int index, ReferenceTarget* before,
                    ReferenceTarget* after)
        : maker_(&maker), before_(before), after_(after), index_(index) {}

    void Restore(int) override { PointAt(before_); }
    void Redo() override { PointAt(after_); }

  private:
    void PointAt(const ObjectWatch& target);

    ObjectWatch maker_;
    ObjectWatch before_;
    ObjectWatch after_;
    int index_;
};
