#include "controllers/record_room.h"

void RecordRoom::BeginBlock() {
    newest_ = new Block;
}

void RecordRoom::EndBlock(Block* block) noexcept {
    if (block == newest_) newest_ = nullptr;
    delete block;
}
