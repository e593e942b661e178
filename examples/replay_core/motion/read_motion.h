#pragma once

#include <istream>
#include <string>
#include <variant>

#include "replay_core/motion/capture_halves.h"
#include "replay_core/motion/capture_text.h"
#include "replay_core/motion/motion.h"

namespace replay {

// Reads a motion capture in the BVH text format, in which a HIERARCHY of joints with their offsets
// and channels is followed by the MOTION, a line of numbers for each frame. (Described by M.
// Meredith and S. Maddock, "Motion Capture File Formats Explained", University of Sheffield, 2001.)
// Taken as it comes: channels in any order and on any joint, several roots, any blanks, LF or CR
// LF, keywords in any case, names with blanks in them, no line end after the last line. More frames
// than announced, a Ctrl-Z at the end and, if it is so wished, fewer frames are taken and told in
// the motion's `oddity`. Anything else ends in an error at its line: the result is a whole motion
// or none, the memory used is bounded by the file's size whatever the file announces, and nothing
// is thrown.
std::variant<Motion, ReadError> ReadMotion(const std::string& path,
                                           CutCapture cut = CutCapture::kRefused);

// The same from a stream that is open for reading in binary mode; `file` is what errors name.
std::variant<Motion, ReadError> ReadMotion(std::istream& stream, const std::string& file,
                                           CutCapture cut = CutCapture::kRefused);

}  // namespace replay
