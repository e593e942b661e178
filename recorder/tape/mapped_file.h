#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace recorder {

// A file whose beginning is memory: what is written there is in the file at once for every process,
// and stays there however this process ends. Room on the disk is set aside before it is mapped, so
// that a full disk is an answer and no fault. What lies behind it is written in large pieces, which
// costs a third of what mapping it would. No other process can have the file in this way at the
// same time; anybody can read it.
class MappedFile {
  public:
    // Makes the file where there is none. Null, and why not in the system's words, if it cannot be
    // had, is no plain file, or another has it.
    static std::unique_ptr<MappedFile> Open(const std::string& path, std::string& whyNot);

    ~MappedFile();
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;

    std::uint64_t Size() const;

    // What is there of the bytes from that offset on.
    std::size_t Read(std::uint64_t offset, std::span<std::byte> bytes) const;

    // The file's first bytes, whole pages; it grows to that, with zeros. Empty, and why
    // not, if there is no room. Once for a file.
    std::span<std::byte> Map(std::size_t size, std::string& whyNot);

    // Writes behind what is mapped. Empty, or why not; there can be a part of it then.
    std::string Write(std::uint64_t offset, std::span<const std::byte> bytes);

    // Has the disk begin with what was written there, where the system can, so that a sync finds
    // little left to wait for.
    void BeginSync(std::uint64_t offset, std::uint64_t size);

    // Waits until all that was written is on the disk. Empty, or why it is not.
    std::string Sync();

    // Gives back what lies behind. Nothing is mapped then.
    void Shrink(std::uint64_t size);

    // Whether the file has no name any more: what is written to it reaches nobody.
    bool IsGone() const;

    // Not in a child that this process was doubled into, which has the same memory.
    bool IsOfThisProcess() const { return *mark_; }

  private:
    MappedFile() = default;
    void Unmap();

    std::intptr_t file_ = -1;  // the system's number or handle
    std::span<std::byte> mapped_;
    static constexpr bool kMarked = true;
    const bool* mark_ = &kMarked;  // which a child finds as false
};

}  // namespace recorder
