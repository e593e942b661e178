#include "replay_core/recorder/text_file.h"

#include <utility>

namespace replay {

TextFile::TextFile(std::string path) : path_(std::move(path)), file_(path_) {
    if (file_.Refusal().empty()) stream_.open(file_.Path(), std::ios::binary);
}

void TextFile::Write(std::string_view text) {
    stream_.write(text.data(), static_cast<std::streamsize>(text.size()));
}

std::string TextFile::Finish() {
    if (!stream_.is_open()) return CannotBeWritten();
    stream_.close();
    return stream_ && file_.TakePlace().empty() ? "" : CannotBeWritten();
}

std::string TextFile::CannotBeWritten() const {
    return path_ + ": the file cannot be written";
}

std::string CsvField(std::string_view text) {
    if (text.find_first_of(",\"\r\n") == std::string_view::npos) return std::string(text);
    std::string field = "\"";
    for (const char c : text)
        field += c == '"' ? "\"\"" : std::string(1, c);
    return field + '"';
}

}  // namespace replay
