#pragma once

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "tvl/log.h"

class CMAXNode;

// Base of the snapshots that nodes lend. One that was still out when its node died stays valid
// memory, and does nothing, until the Core has left.
class OrphanedSnapshot {
  public:
    virtual ~OrphanedSnapshot() = default;

    static void Keep(std::unique_ptr<OrphanedSnapshot> orphan) {
        orphan->older_ = newest_;
        newest_ = orphan.release();
    }

    // Frees all orphans; the number of them.
    static int FreeAll() {
        int freed = 0;
        for (; newest_; ++freed) {
            const std::unique_ptr<OrphanedSnapshot> orphan(newest_);
            newest_ = orphan->older_;
        }
        return freed;
    }

  private:
    OrphanedSnapshot* older_ = nullptr;

    // Without a destructor: snapshots can be orphaned as late as the end of the process.
    static constinit inline OrphanedSnapshot* newest_ = nullptr;
};

// The snapshots of one kind that a node has made, lent and taken back by their `acquired` mark. A
// pool grows to the largest number that were out at once, and stays so until its node dies.
// `Snapshot` may be incomplete where a pool is a member, and has the pool as its friend.
template <class Snapshot>
class SnapshotPool {
  public:
    // A snapshot that nobody holds, the last such one, else a new one, filled for this use. It is
    // lent while it is being filled, so that nobody whom the host calls meanwhile is lent it too.
    template <class... Use>
    Snapshot* Lend(CMAXNode& lender, const Use&... use) {
        Snapshot& snapshot = FindFree(lender);
        snapshot.acquired = true;
        try {
            snapshot.Acquire(lender, use...);
        } catch (...) {
            snapshot.acquired = false;
            throw;
        }
        return &snapshot;
    }

    // Null is ignored.
    template <class Lent>
    static void TakeBack(Lent* lent) {
        if (lent) static_cast<Snapshot*>(lent)->acquired = false;
    }

    // Ends all snapshots, last to first. Those still acquired lose their node and are reported.
    void Empty(const char* report) {
        while (!snapshots_.empty()) {
            std::unique_ptr<Snapshot> last = std::move(snapshots_.back());
            snapshots_.pop_back();
            if (last->acquired) Abandon(std::move(last), report);
        }
    }

  private:
    Snapshot& FindFree(CMAXNode& lender) {
        for (std::size_t index = snapshots_.size(); index-- > 0;)
            if (!snapshots_[index]->acquired) return *snapshots_[index];
        snapshots_.push_back(std::make_unique<Snapshot>(lender));
        return *snapshots_.back();
    }

    // Asks for no memory: it runs where a node is destroyed.
    static void Abandon(std::unique_ptr<Snapshot> snapshot, const char* report) {
        const TVL::Log scope(report, TVL::Log::kError);
        snapshot->node = nullptr;
        snapshot->LoseHost();
        OrphanedSnapshot::Keep(std::move(snapshot));
    }

    std::vector<std::unique_ptr<Snapshot>> snapshots_;
};
