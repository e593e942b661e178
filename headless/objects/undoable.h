#pragma once

#include <functional>

// How the host changes a scene: a change is written as a flip, of which making, taking back and
// making again are one and the same act, such as swapping a value with a kept one.
namespace headless {

// Makes the change, as a record of the hold if one is open. What the flip refers to must live as
// long as the record, so it holds nodes by NodePtr.
void Undoably(std::function<void()> flip);

}  // namespace headless
