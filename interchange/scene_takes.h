#pragma once

#include <string>
#include <vector>

#include "host/types.h"
#include "interchange/take.h"
#include "replay/report.h"

// The takes of the running host's scene.
namespace interchange {

// Of a Core that tells its takes, these; each with the frames of its recordings, in the length of a
// frame that the newest of them has. What no Core tells of is a take for each tree of nodes with
// keys, from the first key to the last, in the length of frame that its keys have, or the scene's
// where they are not even.
std::vector<Take> TakesOf(const std::vector<replay::TakeReport>& told);

// Reads each moment from the host when it is asked for. A node that is gone stands where it was.
class ScenePoses final : public Poses {
  public:
    explicit ScenePoses(const Take& take);  // which outlives it
    void At(double seconds, std::span<TVL::CMatrix4> world) override;

  private:
    const Take& take_;
    std::vector<TVL::CMatrix4> last_;
};

}  // namespace interchange
