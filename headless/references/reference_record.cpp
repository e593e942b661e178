#include "references/reference_record.h"

#include "references/reference_book.h"

ReferenceRecord* ReferenceRecord::newest = nullptr;

ReferenceRecord::ReferenceRecord(ReferenceMaker& maker, int index, ReferenceTarget* before,
                                 ReferenceTarget* after)
    : maker_(&maker), before_(before), after_(after), older_(newest), index_(index) {
    if (older_ != nullptr) older_->newer_ = this;
    newest = this;
    ReferenceBook::MarkRecorded(maker);
    if (before != nullptr) ReferenceBook::MarkRecorded(*before);
    if (after != nullptr) ReferenceBook::MarkRecorded(*after);
}

ReferenceRecord::~ReferenceRecord() {
    if (older_ != nullptr) older_->newer_ = newer_;
    if (newer_ != nullptr)
        newer_->older_ = older_;
    else
        newest = older_;
}

void ReferenceRecord::Restore(int) {
    if (maker_ != nullptr) ReferenceBook::Point(*maker_, index_, before_);
}

void ReferenceRecord::Redo() {
    if (maker_ != nullptr) ReferenceBook::Point(*maker_, index_, after_);
}

void ReferenceRecord::EmptyThoseThatName(const ReferenceMaker& object) {
    for (ReferenceRecord* record = newest; record != nullptr; record = record->older_)
        if (record->maker_ == &object || record->before_ == &object || record->after_ == &object)
            record->maker_ = nullptr;
}
