#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "host/storage.h"

// The host's chunks in memory, for what saves and loads itself outside a scene file. A chunk is its
// id (2 bytes), the number of bytes that follow (4 bytes) and these, so that a test can damage a
// stream where it likes.
class MemorySave final : public ISave {
  public:
    IOResult BeginChunk(std::uint16_t id) override;
    IOResult EndChunk() override;
    IOResult Write(const void* data, std::uint32_t count, std::uint32_t* written) override;
    IOResult WriteCString(const char* text) override;

    std::vector<std::byte> bytes;

  private:
    std::vector<std::size_t> open_;  // where the open chunks' contents begin
};

// Reads such a stream. A chunk that announces more than there is ends where its parent ends.
class MemoryLoad final : public ILoad {
  public:
    explicit MemoryLoad(std::span<const std::byte> bytes) : bytes_(bytes), ends_{bytes.size()} {}

    IOResult OpenChunk() override;
    std::uint16_t CurChunkID() override { return id_; }
    IOResult CloseChunk() override;
    IOResult Read(void* data, std::uint32_t count, std::uint32_t* read) override;
    IOResult ReadCStringChunk(char** text) override;

  private:
    std::size_t Left() const { return ends_.back() - at_; }

    std::span<const std::byte> bytes_;
    std::size_t at_ = 0;
    std::vector<std::size_t> ends_;  // of the stream and of the open chunks
    std::uint16_t id_ = 0;
    std::string text_;
};
