// A tree written by pugixml, to the same bytes: into a string that has room for them from the
// start, since how it would grow is nothing of pugixml's.

#include <pugixml.hpp>

#include "bench/texts.h"

namespace {

struct StringWriter final : pugi::xml_writer {
    explicit StringWriter(std::size_t size) { text.reserve(size); }
    void write(const void* bytes, std::size_t size) override {
        text.append(static_cast<const char*>(bytes), size);
    }
    std::string text;
};

std::string Written(const pugi::xml_document& document, std::size_t size) {
    StringWriter writer(size);
    document.save(writer, "", pugi::format_raw | pugi::format_no_declaration);
    return std::move(writer.text);
}

void Write(benchmark::State& state, const std::string& text) {
    pugi::xml_document document;
    document.load_buffer(text.data(), text.size());
    if (Written(document, text.size()) != text) state.SkipWithError("another text");
    MeasureText(state, text, [&] { return Written(document, text.size()); });
}

const bool isRegistered = Register(kWrite, "pugixml", Write);

}  // namespace
