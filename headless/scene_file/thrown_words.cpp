#include "scene_file/thrown_words.h"

#include <exception>

namespace headless {

std::string ThrownWords() {
    try {
        throw;
    } catch (const std::exception& error) {
        return error.what();
    } catch (...) {
        return "unknown exception";
    }
}

}  // namespace headless
