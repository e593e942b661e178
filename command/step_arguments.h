#pragma once

#include <cstddef>
#include <string>

#include "command/core_space.h"
#include "headless/scene_view.h"

// The words of steps. Each throws a Failure that says what is wrong with one.
namespace headless {

// As a line shows a word or a name.
std::string Quoted(const std::string& text);

[[noreturn]] void RefuseStep(const std::string& why);

// A finite number that single precision can hold.
double ReadNumber(const std::string& word, const char* what);

std::size_t ReadCount(const std::string& word, const char* what);

// Only digits: an id, where else a text could stand.
bool IsId(const std::string& word);
int ReadId(const std::string& word);

// X,Y,Z in metres.
CorePlace ReadPlace(const std::string& word);

// START:END or START:END:STEP in seconds, END included.
struct MomentRange {
    double start = 0;
    double end = 0;
    double step = 0;  // a frame if it is 0
};
MomentRange ReadMoments(const std::string& word);

// A time that the host can count, in its ticks.
TimeValue CheckedTime(double seconds);

// The one node of that name.
NodeView TheNode(const std::string& name);

// What ends such a message, as TellNearest does.
std::string NearestNode(const std::string& name);

}  // namespace headless
