#include "recorder/tape/copier.h"

namespace recorder {

void Copier::Start(std::uint64_t offset, std::span<const std::byte> bytes, bool isToBeSynced) {
    offset_ = offset;
    bytes_ = bytes;
    isToBeSynced_ = isToBeSynced;
    try {
        if (!thread_.joinable()) thread_ = std::thread([this] { Work(); });
    } catch (const std::system_error&) {
        return Write();
    }
    const std::lock_guard lock(mutex_);
    hasWork_ = true;
    changed_.notify_all();
}

std::string Copier::Finish() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return !hasWork_; });
    return whyNot_;
}

void Copier::End() {
    if (!thread_.joinable()) return;
    {
        const std::lock_guard lock(mutex_);
        isEnding_ = true;
        changed_.notify_all();
    }
    thread_.join();
    isEnding_ = false;
}

void Copier::Work() {
    std::unique_lock lock(mutex_);
    for (;;) {
        changed_.wait(lock, [this] { return hasWork_ || isEnding_; });
        if (!hasWork_) return;
        lock.unlock();
        Write();
        lock.lock();
        hasWork_ = false;
        changed_.notify_all();
    }
}

// A piece that could not be written is the last one.
void Copier::Write() {
    if (!whyNot_.empty()) return;
    whyNot_ = file_.Write(offset_, bytes_);
    if (whyNot_.empty() && isToBeSynced_) whyNot_ = file_.Sync();
    KeepDiskBusy();
}

// Large pieces, since each costs an interrupt or more.
void Copier::KeepDiskBusy() {
    constexpr std::uint64_t kMuch = std::uint64_t{8} << 20;
    if (offset_ < waitingTo_) waitingFrom_ = offset_;
    waitingTo_ = offset_ + bytes_.size();
    if (waitingTo_ - waitingFrom_ < kMuch) return;
    file_.BeginSync(waitingFrom_, waitingTo_ - waitingFrom_);
    waitingFrom_ = waitingTo_;
}

}  // namespace recorder
