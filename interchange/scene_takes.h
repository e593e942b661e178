#pragma once

#include <string>
#include <vector>

#include "host/types.h"
#include "interchange/take.h"
#include "replay/report.h"

// The takes of the running host's scene.
namespace interchange {

// Of a Core that tells its takes, these; each with the frames of its recordings, in the length of a
// frame that the newest of them has. Where none are told, a take for each tree of nodes in which
// one has more than one key, from the first key to the last, in the length of frame that its keys
// have if they lie apart evenly as those of a capture do, or the scene's.
std::vector<Take> TakesOf(const std::vector<replay::TakeReport>& told);

// Reads each moment from the host when it is asked for. A frame of the take is read at the tick at
// which it was recorded: a key can lie a tick beside where rounding finds the frame, and beside a
// key is another pose. A node that is gone stands where it was.
class ScenePoses final : public Poses {
  public:
    explicit ScenePoses(const Take& take);  // which outlives it
    void At(double seconds, std::span<TVL::CMatrix4> world) override;

  private:
    TimeValue MomentOf(double seconds) const;

    const Take& take_;
    std::vector<TimeValue> keys_;  // of the node that has most
    std::vector<TVL::CMatrix4> last_;
};

}  // namespace interchange
