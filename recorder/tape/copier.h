#pragma once

#include <condition_variable>
#include <mutex>
#include <span>
#include <string>
#include <thread>

#include "recorder/tape/mapped_file.h"

namespace recorder {

// Writes to a file on a thread of its own, one piece at a time, so that whoever records does not
// wait for it. Without a thread, which the system can refuse, it does so at once.
class Copier {
  public:
    explicit Copier(MappedFile& file) : file_(file) {}
    ~Copier() { End(); }
    Copier(const Copier&) = delete;
    Copier& operator=(const Copier&) = delete;

    // Once the last piece is finished. The bytes stand until this one is.
    void Start(std::uint64_t offset, std::span<const std::byte> bytes, bool isToBeSynced);

    // Waits for the piece. Empty, or why it, or one before it, could not be written.
    std::string Finish();

    // Ends the thread, which the next piece begins again. Threads must not outlive their module.
    void End();

  private:
    void Work();
    void Write();
    void KeepDiskBusy();

    MappedFile& file_;
    std::thread thread_;
    std::mutex mutex_;
    std::condition_variable changed_;
    bool hasWork_ = false;
    bool isEnding_ = false;
    std::uint64_t offset_ = 0;
    std::span<const std::byte> bytes_;
    bool isToBeSynced_ = false;
    std::uint64_t waitingFrom_ = 0;  // what the disk has not begun with
    std::uint64_t waitingTo_ = 0;
    std::string whyNot_;
};

}  // namespace recorder
