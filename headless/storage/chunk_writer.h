#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "headless/storage/byte_sink.h"
#include "host/storage.h"

namespace headless {

// Writes chunks into a sink as they come; nothing is kept but where the open ones began. A further
// writer may work on the same sink inside a chunk that is open here, so that whoever gets that one
// cannot close what is not its own.
class ChunkWriter final : public ISave {
  public:
    explicit ChunkWriter(ByteSink& sink) : sink_(&sink) {}

    IOResult BeginChunk(std::uint16_t id) override;
    IOResult EndChunk() override;
    IOResult Write(const void* bytes, std::uint32_t count, std::uint32_t* written) override;
    IOResult WriteCString(const char* text) override;  // null is written as the empty text

    // Ends the chunks that are still open.
    void CloseAll();

    // The sink refused something, and everything since has been refused too.
    bool HasFailed() const { return failed_; }

  private:
    IOResult Append(std::span<const std::byte> bytes);

    ByteSink* sink_;
    std::vector<std::uint64_t> open_;  // where the contents of the open chunks begin
    bool failed_ = false;
};

}  // namespace headless
