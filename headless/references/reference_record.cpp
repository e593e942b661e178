#include "headless/references/reference_record.h"

#include "headless/references/reference_book.h"

void ReferenceRecord::PointAt(const ObjectWatch& target) {
    if (maker_.IsGone() || before_.IsGone() || after_.IsGone()) return;
    ReferenceBook::Point(*maker_.Get(), index_, static_cast<ReferenceTarget*>(target.Get()));
}
