#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "interchange/take.h"

namespace interchange {

// What a world matrix does to a node beyond turning and moving it.
enum class Flaw { kScale, kShear, kMirror, kFlat, kNowhere };
inline constexpr std::size_t kFlaws = 5;

// Notes, through all frames, which nodes a file shows unlike they are, when first, and when most.
class FlawNotes {
  public:
    explicit FlawNotes(const Take& take);  // which outlives it

    // To be called for each frame, in their order.
    void Look(std::size_t node, const TVL::CMatrix4& world, double seconds);

    // A line for each node and flaw of these that there is.
    std::vector<std::string> Words(const std::vector<Flaw>& flaws) const;

  private:
    struct Note {
        double worst = 0;  // none if 0
        double seconds = 0;
        double firstSeconds = 0;
        int axis = 0;
    };

    void Tell(std::size_t node, Flaw flaw, double much, double seconds, int axis = 0);

    const Take& take_;
    std::vector<Note> notes_;  // kFlaws for each node
};

// Whether all of it are numbers.
bool IsFinite(const TVL::CMatrix4& matrix);

// Of a file that begins at 0, whenever its take does: what is to be told.
std::string LostStart(const Take& take);

// As short as it reads back the same, without an exponent and without regard to the locale.
std::string NumberText(double number);

}  // namespace interchange
