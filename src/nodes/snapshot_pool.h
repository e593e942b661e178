#pragma once

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

// Base of the snapshots that nodes lend. One that was still out when its node died stays valid
// memory, and does nothing, until the Core has left.
class OrphanedSnapshot {
  public:
    virtual ~OrphanedSnapshot() = default;

  private:
    friend void KeepOrphan(std::unique_ptr<OrphanedSnapshot> orphan);
    friend int FreeOrphans();
    OrphanedSnapshot* next_ = nullptr;
};

void KeepOrphan(std::unique_ptr<OrphanedSnapshot> orphan);

// Frees all orphans; the number of them.
int FreeOrphans();

// Reports a snapshot that its node leaves behind still acquired.
void ReportStillAcquired(const char* report);

// The snapshots of one kind that a node has made, lent and taken back by their `acquired` mark. A
// pool grows to the largest number that were out at once, and stays so until its node dies.
// `Snapshot` may be incomplete where a pool is a member.
template <class Snapshot>
class SnapshotPool {
  public:
    // A snapshot that nobody holds, the last such one, else a new one; the caller fills it for its
    // use and so acquires it.
    template <class Make>
    Snapshot& FindFree(Make make) {
        for (std::size_t index = snapshots_.size(); index-- > 0;)
            if (!snapshots_[index]->IsAcquired()) return *snapshots_[index];
        snapshots_.push_back(make());
        return *snapshots_.back();
    }

    // Ends all snapshots, last to first. Those still acquired lose their node and are reported.
    void Empty(const char* report) {
        while (!snapshots_.empty()) {
            std::unique_ptr<Snapshot> last = std::move(snapshots_.back());
            snapshots_.pop_back();
            if (last->IsAcquired()) Abandon(std::move(last), report);
        }
    }

  private:
    // Asks for no memory: it runs where a node is destroyed.
    static void Abandon(std::unique_ptr<Snapshot> snapshot, const char* report) {
        ReportStillAcquired(report);
        snapshot->LoseNode();
        KeepOrphan(std::move(snapshot));
    }

    std::vector<std::unique_ptr<Snapshot>> snapshots_;
};
