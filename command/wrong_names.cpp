#include <algorithm>
#include <utility>

#include "command/output.h"
#include "command/wrong_words.h"

namespace headless {
namespace {

// How many letters are to be put in, left out, replaced or swapped with their neighbour to turn one
// word into the other.
std::size_t Distance(std::string_view from, std::string_view to) {
    std::vector<std::size_t> before;  // the rows of the two letters ahead of this one
    std::vector<std::size_t> last(to.size() + 1);
    for (std::size_t column = 0; column <= to.size(); ++column)
        last[column] = column;
    for (std::size_t row = 1; row <= from.size(); ++row) {
        std::vector<std::size_t> here{row};
        for (std::size_t column = 1; column <= to.size(); ++column) {
            const bool isSame = from[row - 1] == to[column - 1];
            std::size_t least =
                std::min({last[column] + 1, here.back() + 1, last[column - 1] + (isSame ? 0 : 1)});
            if (row > 1 && column > 1 && from[row - 1] == to[column - 2] &&
                from[row - 2] == to[column - 1])
                least = std::min(least, before[column - 2] + 1);
            here.push_back(least);
        }
        before = std::exchange(last, std::move(here));
    }
    return last.back();
}

}  // namespace

std::string TellNearest(std::string_view word, const std::vector<std::string>& candidates) {
    constexpr std::size_t kLongestWord = 100;  // a longer one is no word that was mistyped
    if (word.empty() || word.size() > kLongestWord) return {};
    const std::string* nearest = nullptr;
    std::size_t least = kLongestWord;
    for (const std::string& candidate : candidates) {
        const bool isBegun = candidate.starts_with(word);
        const bool isEnded = candidate.ends_with(word);
        const std::size_t distance = isBegun ? 1 : isEnded ? 2 : Distance(word, candidate);
        if (distance >= least) continue;
        if (!isBegun && !isEnded && distance * 3 > std::max(word.size(), candidate.size()))
            continue;
        least = distance;
        nearest = &candidate;
    }
    return nearest ? "; " + *nearest + " is the nearest" : "";
}

NodeView TheNode(const std::string& name) {
    const std::vector<NodeView> nodes = Nodes();
    const auto count = std::ranges::count(nodes, name, &NodeView::name);
    if (count == 0) throw Failure(NoNode(name));
    if (count > 1) throw Failure(std::to_string(count) + " nodes are called " + Quoted(name));
    return *std::ranges::find(nodes, name, &NodeView::name);
}

std::string NoNode(const std::string& name) {
    std::vector<std::string> names;
    for (const NodeView& node : Nodes())
        names.push_back(InTable(node.name));
    return "no node is called " + Quoted(name) + TellNearest(name, names);
}

}  // namespace headless
