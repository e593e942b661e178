#include "tvl/extendable.h"

#include <algorithm>

namespace TVL {

std::intptr_t CExtendable::HandleExtension(int, void*) {
    return 0;
}

std::vector<int> CExtendable::ListExtensions() {
    return {};
}

bool CExtendable::HasExtension(int id) {
    const std::vector<int> ids = ListExtensions();
    return std::find(ids.begin(), ids.end(), id) != ids.end();
}

}  // namespace TVL
