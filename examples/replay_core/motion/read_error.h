#pragma once

#include <cstddef>
#include <string>

namespace replay {

// Why a capture could not be read, and where. Nothing is thrown out of the reader.
struct ReadError {
    std::string file;
    std::size_t line = 0;  // from 1; 0 where the file as a whole is meant
    std::string what;
};

// One line for a log or a person: "walk.bvh:12: a number was expected, found 'abc'".
std::string Describe(const ReadError& error);

}  // namespace replay
