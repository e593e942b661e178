#pragma once

#include <cstddef>
#include <map>
#include <string>

class InterfaceServer;

namespace headless {

// Every host object alive, as a list that runs through the objects themselves.
class LiveObjects {
  public:
    // How many there are of each class, under the name that the class gives itself, or its name in
    // the source if it gives none.
    static std::map<std::string, std::size_t> CountByClass();

    static void Add(InterfaceServer& object);
    static void Remove(InterfaceServer& object);
};

// How many blocks are allocated on the host's heap, objects among them.
std::size_t HeapBlocks();

}  // namespace headless
