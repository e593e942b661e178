#include "command/step_arguments.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <string_view>
#include <vector>

#include "command/exit_status.h"
#include "command/nearest.h"
#include "command/output.h"

namespace headless {
namespace {

std::vector<std::string> Parts(const std::string& word, char mark) {
    std::vector<std::string> parts(1);
    for (const char c : word)
        if (c == mark)
            parts.emplace_back();
        else
            parts.back() += c;
    return parts;
}

template <class Number>
std::errc Read(const std::string& word, Number& number) {
    const char* const end = word.data() + word.size();
    const auto [behind, error] = std::from_chars(word.data(), end, number);
    return error == std::errc() && behind != end ? std::errc::invalid_argument : error;
}

}  // namespace

std::string Quoted(const std::string& text) {
    return '"' + InTable(text) + '"';
}

void RefuseStep(const std::string& why) {
    throw Failure(why, kWrongUsage);
}

double ReadNumber(const std::string& word, const char* what) {
    double number = 0;
    const std::errc error = Read(word, number);
    if (error == std::errc::invalid_argument || std::isnan(number))
        RefuseStep(Quoted(word) + " is not " + what);
    if (error != std::errc() || std::abs(number) > std::numeric_limits<float>::max())
        RefuseStep(Quoted(word) + " is out of range");
    return number;
}

std::size_t ReadCount(const std::string& word, const char* what) {
    std::size_t count = 0;
    if (Read(word, count) != std::errc()) RefuseStep(Quoted(word) + " is not " + what);
    return count;
}

bool IsId(const std::string& word) {
    return !word.empty() && word.find_first_not_of("0123456789") == std::string::npos;
}

int ReadId(const std::string& word) {
    int id = 0;
    if (Read(word, id) != std::errc()) RefuseStep(Quoted(word) + " is not the number of a control");
    return id;
}

CorePlace ReadPlace(const std::string& word) {
    const std::vector<std::string> parts = Parts(word, ',');
    if (parts.size() != 3) RefuseStep(Quoted(word) + " is not a place X,Y,Z in metres");
    constexpr char kWhat[] = "a number of metres";
    return {ReadNumber(parts[0], kWhat), ReadNumber(parts[1], kWhat), ReadNumber(parts[2], kWhat)};
}

MomentRange ReadMoments(const std::string& word) {
    const std::vector<std::string> parts = Parts(word, ':');
    if (parts.size() < 2 || parts.size() > 3)
        RefuseStep(Quoted(word) + " is not START:END or START:END:STEP in seconds");
    constexpr char kWhat[] = "a number of seconds";
    MomentRange range{ReadNumber(parts[0], kWhat), ReadNumber(parts[1], kWhat), 0};
    if (range.end < range.start) RefuseStep(Quoted(word) + " ends before it starts");
    if (parts.size() < 3) return range;
    range.step = ReadNumber(parts[2], kWhat);
    if (range.step <= 0) RefuseStep(Quoted(word) + " has no step above 0");
    return range;
}

TimeValue CheckedTime(double seconds) {
    const TimeValue time = AtSeconds(seconds);
    if (std::abs(double{1} * time) >= double{std::numeric_limits<TimeValue>::max()})
        throw Failure(Plain(seconds) + " s is beyond what the host can count");
    return time;
}

NodeView TheNode(const std::string& name) {
    const std::vector<NodeView> nodes = Nodes();
    const auto count = std::ranges::count(nodes, name, &NodeView::name);
    if (count == 0) throw Failure("no node is called " + Quoted(name) + NearestNode(name));
    if (count > 1) throw Failure(std::to_string(count) + " nodes are called " + Quoted(name));
    return *std::ranges::find(nodes, name, &NodeView::name);
}

std::string NearestNode(const std::string& name) {
    std::vector<std::string> names;
    for (NodeView& node : Nodes())
        names.push_back(std::move(node.name));
    return TellNearest(name, names);
}

}  // namespace headless
