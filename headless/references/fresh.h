#pragma once

#include <memory>

#include "headless/references/graveyard.h"

// An object on its way to whoever is to refer to it. If nobody does in the end, because something
// failed, it goes like any other that nothing refers to.
namespace headless {

struct Bury {
    void operator()(ReferenceTarget* target) const { Graveyard::Get().Release(*target); }
};
template <class T>
using Fresh = std::unique_ptr<T, Bury>;

}  // namespace headless
