#include "nodes/snapshot_pool.h"

#include "tvl/log.h"

namespace {

// Without a destructor: snapshots can be orphaned as late as the end of the process.
OrphanedSnapshot* newestOrphan = nullptr;

}  // namespace

void KeepOrphan(std::unique_ptr<OrphanedSnapshot> orphan) {
    orphan->next_ = newestOrphan;
    newestOrphan = orphan.release();
}

int FreeOrphans() {
    int freed = 0;
    while (newestOrphan) {
        const std::unique_ptr<OrphanedSnapshot> orphan(newestOrphan);
        newestOrphan = orphan->next_;
        ++freed;
    }
    return freed;
}

void ReportStillAcquired(const char* report) {
    const TVL::Log log(report, TVL::Log::kError);
}
