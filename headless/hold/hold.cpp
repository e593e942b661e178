#include "host/hold.h"

#include "headless/breaches/breach_book.h"
#include "headless/hold/undo_stream.h"

using headless::UndoStream;

Hold theHold;

RestoreObj::~RestoreObj() = default;
int RestoreObj::Size() {
    return 1;
}
void RestoreObj::EndHold() {}
HostString RestoreObj::Description() {
    return "---";
}

void Hold::Begin() {
    headless::ExpectHost("Hold::Begin");
    UndoStream::Get().Begin();
}
void Hold::Accept(const char* label) {
    headless::ExpectHost("Hold::Accept");
    UndoStream::Get().Accept(label);
}
void Hold::Cancel() {
    headless::ExpectHost("Hold::Cancel");
    UndoStream::Get().Cancel();
}
void Hold::Put(RestoreObj* record) {
    headless::ExpectHost("Hold::Put");
    UndoStream::Get().Put(record);
}
bool Hold::Holding() const {
    return UndoStream::Get().Holding();
}
bool Hold::RestoreOrRedoing() const {
    return UndoStream::Get().RestoreOrRedoing();
}
