#pragma once

#include <cstdint>

#include "host/storage.h"

// The next chunk of the present level, open for as long as this lives; so whoever gives up leaves
// the reader on the level on which it was.
class OpenedChunk {
  public:
    explicit OpenedChunk(ILoad& load) : load_(load), isOpen_(load.OpenChunk() == IO_OK) {}
    ~OpenedChunk() { Close(); }
    OpenedChunk(const OpenedChunk&) = delete;
    OpenedChunk& operator=(const OpenedChunk&) = delete;

    bool IsOpen() const { return isOpen_; }
    bool Is(std::uint16_t id) const { return isOpen_ && Id() == id; }
    std::uint16_t Id() const { return id_; }

    // Goes on with the next chunk of the level.
    void Next() {
        Close();
        isOpen_ = load_.OpenChunk() == IO_OK;
        id_ = isOpen_ ? load_.CurChunkID() : id_;
    }

  private:
    void Close() {
        if (isOpen_) load_.CloseChunk();
        isOpen_ = false;
    }

    ILoad& load_;
    bool isOpen_;
    std::uint16_t id_ = isOpen_ ? load_.CurChunkID() : std::uint16_t{0};
};
