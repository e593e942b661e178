#pragma once

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "headless/storage/checksum.h"

namespace headless {

// Where bytes are written to, one behind the other. Zeros can be filled in later, so that a length
// can go in front of contents that are not known yet.
class ByteSink {
  public:
    virtual ~ByteSink() = default;

    // False: the bytes could not be written, and no further ones will be.
    virtual bool Append(std::span<const std::byte> bytes) = 0;

    // Puts bytes in the place of zeros that lie wholly within what has been written.
    virtual bool FillIn(std::uint64_t position, std::span<const std::byte> bytes) = 0;

    virtual std::uint64_t Size() const = 0;
};

class MemorySink final : public ByteSink {
  public:
    bool Append(std::span<const std::byte> bytes) override;
    bool FillIn(std::uint64_t position, std::span<const std::byte> bytes) override;
    std::uint64_t Size() const override { return bytes_.size(); }

    std::span<const std::byte> Bytes() const { return bytes_; }
    std::vector<std::byte> Take() { return std::exchange(bytes_, {}); }

  private:
    std::vector<std::byte> bytes_;
};

// A file, which is made or emptied first. The newest bytes wait in a block, so that neither small
// pieces nor the lengths of small chunks cost a call to the system each; whole blocks of large
// pieces go past it. The system brings a long file to the disk while it is still being written.
class FileSink final : public ByteSink {
  public:
    explicit FileSink(const std::string& path);
    bool Append(std::span<const std::byte> bytes) override;
    bool FillIn(std::uint64_t position, std::span<const std::byte> bytes) override;
    std::uint64_t Size() const override { return flushed_ + block_.size(); }

    // The checksum of what is written from here on. What is filled in lies on one side of here.
    void StartChecksum();
    std::uint32_t ChecksumSinceStart() const;

    // Hands everything to the system. False: something of it could not be written.
    bool Close();

    // The system's word for what failed first; empty if nothing did.
    const std::string& Failure() const { return failure_; }

  private:
    bool Flush();
    bool HandOver(std::span<const std::byte> bytes);
    bool NoteFailure();
    std::span<const std::byte> Summed(std::span<const std::byte> bytes) const;

    std::string path_;
    std::ofstream file_;
    std::uint64_t flushed_ = 0;     // bytes that the system has
    std::vector<std::byte> block_;  // the end of what has been written
    std::uint64_t start_ = 0;       // of the checksum
    Checksum checksum_;             // from there on, of what the system has
    std::string failure_;
};

}  // namespace headless
