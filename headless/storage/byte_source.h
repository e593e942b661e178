#pragma once

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <span>
#include <string>
#include <vector>

namespace headless {

// Where bytes are read from, at any position.
class ByteSource {
  public:
    virtual ~ByteSource() = default;
    virtual std::uint64_t Size() const = 0;

    // How many bytes were read; fewer than asked for at the end, or where reading failed.
    virtual std::size_t ReadAt(std::uint64_t position, std::span<std::byte> bytes) = 0;
};

// Bytes that stay the caller's.
class MemorySource final : public ByteSource {
  public:
    explicit MemorySource(std::span<const std::byte> bytes) : bytes_(bytes) {}
    std::uint64_t Size() const override { return bytes_.size(); }
    std::size_t ReadAt(std::uint64_t position, std::span<std::byte> bytes) override;

  private:
    std::span<const std::byte> bytes_;
};

// A file; one that cannot be opened has no bytes. It is read a block at a time, so that small
// pieces near each other do not cost a call to the system each.
class FileSource final : public ByteSource {
  public:
    explicit FileSource(const std::string& path);
    bool IsOpen() const { return file_.is_open(); }
    std::uint64_t Size() const override { return size_; }
    std::size_t ReadAt(std::uint64_t position, std::span<std::byte> bytes) override;

  private:
    std::size_t FromBlock(std::uint64_t position, std::span<std::byte> bytes) const;
    std::size_t FromFile(std::uint64_t position, std::span<std::byte> bytes);

    std::ifstream file_;
    std::uint64_t size_ = 0;
    std::uint64_t blockBegin_ = 0;
    std::vector<std::byte> block_;  // what was read last, from blockBegin_ on
};

}  // namespace headless
