#pragma once

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace headless {

// Where bytes are written to, one behind the other. What has been written can be overwritten, so
// that a length can go in front of contents that are not known yet.
class ByteSink {
  public:
    virtual ~ByteSink() = default;

    // False: the bytes could not be written, and no further ones will be.
    virtual bool Append(std::span<const std::byte> bytes) = 0;

    // Overwrites bytes that lie wholly within what has been written.
    virtual bool Overwrite(std::uint64_t position, std::span<const std::byte> bytes) = 0;

    virtual std::uint64_t Size() const = 0;
};

class MemorySink final : public ByteSink {
  public:
    bool Append(std::span<const std::byte> bytes) override;
    bool Overwrite(std::uint64_t position, std::span<const std::byte> bytes) override;
    std::uint64_t Size() const override { return bytes_.size(); }

    std::span<const std::byte> Bytes() const { return bytes_; }
    std::vector<std::byte> Take() { return std::exchange(bytes_, {}); }

  private:
    std::vector<std::byte> bytes_;
};

// A file, which is made or emptied first. The newest bytes wait in a block, so that neither small
// pieces nor the lengths of small chunks cost a call to the system each.
class FileSink final : public ByteSink {
  public:
    explicit FileSink(const std::string& path);
    bool Append(std::span<const std::byte> bytes) override;
    bool Overwrite(std::uint64_t position, std::span<const std::byte> bytes) override;
    std::uint64_t Size() const override { return size_; }

    // Reads back bytes that lie wholly within what has been written.
    bool ReadBack(std::uint64_t position, std::span<std::byte> bytes);

    // Hands everything to the system. False: something of it could not be written.
    bool Close();

    // The system's word for what failed first; empty if nothing did.
    const std::string& Failure() const { return failure_; }

  private:
    bool Flush();
    bool NoteFailure();
    std::uint64_t Flushed() const { return size_ - block_.size(); }

    std::fstream file_;
    std::uint64_t size_ = 0;
    std::vector<std::byte> block_;  // the end of what has been written
    std::string failure_;
};

}  // namespace headless
