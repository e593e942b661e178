#pragma once

#include "tvl/undo.h"

// Puts the host's time back to a remembered one; undo and redo flip between the two.
class CSetTimeRestoreObj final : public TVL::CUndo {
  public:
    explicit CSetTimeRestoreObj(double seconds) : time(seconds) {}

    void Undo(bool isUndo) override;
    void Redo() override { Undo(true); }

  private:
    double time;  // seconds
};
