#pragma once

#include "host/hold.h"
#include "host/reference.h"

// The record of one reference that was pointed elsewhere. A record is emptied, and does nothing any
// more, when one of the objects that it names is destroyed by its creator.
class ReferenceRecord final : public RestoreObj {
  public:
    ReferenceRecord(ReferenceMaker& maker, int index, ReferenceTarget* before,
                    ReferenceTarget* after);
    ~ReferenceRecord() override;
    ReferenceRecord(const ReferenceRecord&) = delete;
    ReferenceRecord& operator=(const ReferenceRecord&) = delete;

    void Restore(int isUndo) override;
    void Redo() override;

    static void EmptyThoseThatName(const ReferenceMaker& object);

  private:
    static ReferenceRecord* newest;  // heads the list of all such records

    ReferenceMaker* maker_;
    ReferenceTarget* before_;
    ReferenceTarget* after_;
    ReferenceRecord* older_;
    ReferenceRecord* newer_ = nullptr;
    int index_;
};
