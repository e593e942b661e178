#include "scene_file/thrown_words.h"

#include <exception>
#include <new>

namespace headless {

std::string ThrownWords() {
    try {
        throw;
    } catch (const std::bad_alloc&) {
        return "there is not enough memory";
    } catch (const std::exception& error) {
        return error.what();
    } catch (...) {
        return "unknown exception";
    }
}

}  // namespace headless
