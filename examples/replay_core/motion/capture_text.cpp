#include "replay_core/motion/capture_text.h"

#include <algorithm>
#include <utility>

#include "replay_core/motion/numbers.h"

namespace replay {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";  // UTF-8, as some editors put it
constexpr char kControlZ = '\x1A';
constexpr std::size_t kLongestQuotation = 40;  // bytes

std::size_t BytesOf(std::istream& stream) {
    const std::istream::pos_type start = stream.tellg();
    stream.seekg(0, std::ios::end);
    const std::istream::pos_type end = stream.tellg();
    stream.clear();
    stream.seekg(start);
    stream.clear();
    return end > start ? static_cast<std::size_t>(end - start) : 0;
}

bool IsBlank(char letter) {
    return letter == ' ' || letter == '\t' || letter == '\v' || letter == '\f' || letter == '\r';
}

bool IsWordByItself(char letter) {
    return letter == '{' || letter == '}' || letter == ':';
}

bool EndsWord(char letter) {
    return IsBlank(letter) || IsWordByItself(letter);
}

std::string_view Trimmed(std::string_view text) {
    const auto first = std::ranges::find_if_not(text, IsBlank);
    const auto last = std::find_if_not(text.rbegin(), text.rend(), IsBlank).base();
    return first < last ? std::string_view(first, last) : std::string_view();
}

char Lowered(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool IsContinuationByte(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

bool IsControl(char byte) {
    return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F;
}

}  // namespace

CaptureText::CaptureText(std::istream& stream, std::string file)
    : stream_(stream), file_(std::move(file)), bytesLeft_(BytesOf(stream)) {}

std::string_view CaptureText::NextWord() {
    std::string_view word = NextWordOfLine();
    if (word.empty() && NextLine()) word = NextWordOfLine();
    return word;
}

std::string_view CaptureText::NextWordOfLine() {
    const auto first = std::ranges::find_if_not(rest_, IsBlank);
    auto behind = std::find_if(first, rest_.end(), EndsWord);
    if (behind == first && first != rest_.end()) ++behind;  // no blank, so a word by itself
    rest_ = {behind, rest_.end()};
    return {first, behind};
}

std::string_view CaptureText::NextName() {
    const std::string_view name = rest_.substr(0, rest_.find('{'));
    rest_.remove_prefix(name.size());
    return Trimmed(name);
}

bool CaptureText::NextLine() {
    while (FetchLine()) {
        if (!rest_.empty()) return true;
    }
    return false;
}

bool CaptureText::FetchLine() {
    rest_ = {};
    if (endedAtControlZ_ || !std::getline(stream_, line_)) return false;
    ++lineNumber_;
    bytesLeft_ -= std::min(bytesLeft_, line_.size() + 1);
    const std::size_t end = line_.find(kControlZ);
    endedAtControlZ_ = end != std::string::npos;
    if (endedAtControlZ_) line_.resize(end);
    const bool isMarked = lineNumber_ == 1 && line_.starts_with(kByteOrderMark);
    rest_ = Trimmed(std::string_view(line_).substr(isMarked ? kByteOrderMark.size() : 0));
    return true;
}

std::optional<ReadError> CaptureText::Expect(std::string_view keyword) {
    const std::string_view word = NextWord();
    if (!IsKeyword(word, keyword)) return Unexpected(Quoted(keyword), word);
    return std::nullopt;
}

std::optional<ReadError> CaptureText::ExpectCount(std::size_t& count) {
    const std::string_view word = NextWord();
    const std::optional<std::size_t> parsed = ParseCount(word);
    if (!parsed) return Unexpected("a whole number", word);
    count = *parsed;
    return std::nullopt;
}

std::optional<ReadError> CaptureText::ExpectNumber(double& number) {
    const std::string_view word = NextWord();
    const std::optional<double> parsed = ParseNumber(word);
    if (!parsed) return Unexpected("a number", word);
    number = *parsed;
    return std::nullopt;
}

std::optional<ReadError> CaptureText::ExpectPoint(std::array<double, 3>& point) {
    for (double& coordinate : point) {
        if (auto error = ExpectNumber(coordinate)) return error;
    }
    return std::nullopt;
}

ReadError CaptureText::Error(std::string what) const {
    return {file_, std::max<std::size_t>(lineNumber_, 1), std::move(what)};
}

ReadError CaptureText::Unexpected(std::string_view expected, std::string_view found) const {
    std::string what(expected);
    what += " was expected, ";
    what += found.empty() ? "but the file ends" : "found " + Quoted(found);
    return Error(std::move(what));
}

bool IsKeyword(std::string_view word, std::string_view keyword) {
    return std::ranges::equal(word, keyword, {}, Lowered, Lowered);
}

std::string Quoted(std::string_view text) {
    std::size_t length = std::min(text.size(), kLongestQuotation);
    if (length < text.size()) {
        while (length > 0 && IsContinuationByte(text[length]))
            --length;
    }
    std::string quotation(text.substr(0, length));
    std::ranges::replace_if(quotation, IsControl, '?');
    return "'" + quotation + (length < text.size() ? "...'" : "'");
}

std::string Describe(const ReadError& error) {
    if (error.line == 0) return error.file + ": " + error.what;
    return error.file + ":" + std::to_string(error.line) + ": " + error.what;
}

}  // namespace replay
