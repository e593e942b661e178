#include "command/print_json.h"

#include <nlohmann/json.hpp>
#include <ostream>

namespace headless {

void PrintJson(std::ostream& out, const nlohmann::ordered_json& object) {
    out << object.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
}

}  // namespace headless
