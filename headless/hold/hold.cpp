#include "host/hold.h"

#include "hold/undo_stream.h"

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
    UndoStream::Get().Begin();
}
void Hold::Accept(const char* label) {
    UndoStream::Get().Accept(label);
}
void Hold::Cancel() {
    UndoStream::Get().Cancel();
}
void Hold::Put(RestoreObj* record) {
    UndoStream::Get().Put(record);
}
bool Hold::Holding() const {
    return UndoStream::Get().Holding();
}
bool Hold::RestoreOrRedoing() const {
    return UndoStream::Get().RestoreOrRedoing();
}
