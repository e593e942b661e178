#include "replay_core/motion/read_error.h"

namespace replay {

std::string Describe(const ReadError& error) {
    if (error.line == 0) return error.file + ": " + error.what;
    return error.file + ":" + std::to_string(error.line) + ": " + error.what;
}

}  // namespace replay
