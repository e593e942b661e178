#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>

// The names of the nodes in the scene, so that a new one can get a name of its own quickly. Names
// that are set by hand may be double.
namespace headless {

class NameBook {
  public:
    void Add(const std::string& name);
    void Remove(const std::string& name);
    void Replace(const std::string& before, const std::string& after);

    // `stem` followed by the next number of at least two digits that makes it a new name.
    std::string MakeUnique(const std::string& stem);

  private:
    std::unordered_map<std::string, std::size_t> uses_;
    std::unordered_map<std::string, unsigned> lastNumber_;  // by stem
};

}  // namespace headless
