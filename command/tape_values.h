#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "recorder/tape/object_names.h"

// How the values of a record are told (their letters are those of recorder/stream/operations.h).
namespace headless {

// The next value of the reader's. For a person long texts are cut, and of trees it is told how many
// elements they have.
std::string ValueText(recorder::ValueReader& values, char letter,
                      const recorder::ObjectNames& names);
nlohmann::ordered_json ValueJson(recorder::ValueReader& values, char letter,
                                 const recorder::ObjectNames& names);

std::string MeshText(recorder::MeshId mesh);

}  // namespace headless
