#pragma once

#include "measures/host_clock.h"
#include "tvl/undo.h"

// Puts the host's time back to where it was when the chunk was made; undo and redo flip between the
// two times.
class CSetTimeRestoreObj final : public TVL::CUndo {
  public:
    CSetTimeRestoreObj() : time(CurrentSeconds()) {}

    void Undo(bool isUndo) override;
    void Redo() override { Undo(true); }

  private:
    double time;  // seconds
};
