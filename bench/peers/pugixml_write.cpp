// A tree written by pugixml, to the same bytes.

#include <pugixml.hpp>

#include "bench/texts.h"

namespace {

struct StringWriter final : pugi::xml_writer {
    void write(const void* bytes, std::size_t size) override {
        text.append(static_cast<const char*>(bytes), size);
    }
    std::string text;
};

std::string Written(const pugi::xml_document& document) {
    StringWriter writer;
    document.save(writer, "", pugi::format_raw | pugi::format_no_declaration);
    return std::move(writer.text);
}

void Write(benchmark::State& state, const std::string& text) {
    pugi::xml_document document;
    document.load_buffer(text.data(), text.size());
    if (Written(document) != text) state.SkipWithError("another text");
    MeasureText(state, text, [&] { return Written(document); });
}

const bool isRegistered = Register(kWrite, "pugixml", Write);

}  // namespace
