#pragma once

#include <array>
#include <cstddef>
#include <istream>
#include <optional>
#include <string>
#include <string_view>

namespace replay {

// Why a capture could not be read, and where. Nothing is thrown out of the reader.
struct ReadError {
    std::string file;
    std::size_t line = 0;  // from 1; 0 where the file as a whole is meant
    std::string what;
};

// One line for a log or a person: "walk.bvh:12: a number was expected, found 'abc'".
std::string Describe(const ReadError& error);

// The text of a capture, streamed line by line and taken word by word, with the place for messages.
// Words stand between blanks, tabs and line ends (LF or CR LF); '{', '}' and ':' are words of their
// own. A Ctrl-Z (0x1A), with which old programs end a text, is the end of it. A view that is given
// out holds until the next word is asked for.
class CaptureText {
  public:
    // The stream is the caller's and outlives this object. `file` is what messages name.
    CaptureText(std::istream& stream, std::string file);

    // The next word, on this line or a later one; empty at the end of the file.
    std::string_view NextWord();

    // The next word of this line; empty at its end.
    std::string_view NextWordOfLine();

    // What this line still holds before a '{', without blanks around it.
    std::string_view NextName();

    // Goes on to the next line with a word on it, whatever this one still holds; false at the end.
    bool NextLine();

    // What must come next. Each gives the error, or nothing when it was found.
    std::optional<ReadError> Expect(std::string_view keyword);
    std::optional<ReadError> ExpectCount(std::size_t& count);
    std::optional<ReadError> ExpectNumber(double& number);
    std::optional<ReadError> ExpectPoint(std::array<double, 3>& point);

    // Errors at the present line.
    ReadError Error(std::string what) const;
    ReadError Unexpected(std::string_view expected, std::string_view found) const;

    // Whether the text ended at a Ctrl-Z, whatever the file holds behind it.
    bool EndedAtControlZ() const { return endedAtControlZ_; }

    // Bytes of the file behind this line; 0 where the stream does not tell.
    std::size_t BytesLeft() const { return bytesLeft_; }

  private:
    bool FetchLine();

    std::istream& stream_;
    std::string file_;
    std::string line_;
    std::string_view rest_;  // of line_
    std::size_t lineNumber_ = 0;
    std::size_t bytesLeft_ = 0;
    bool endedAtControlZ_ = false;
};

// Keywords and channel names are compared without regard to the case of ASCII letters.
bool IsKeyword(std::string_view word, std::string_view keyword);

// Foreign text within quotes, cut to a readable length and kept to one line.
std::string Quoted(std::string_view text);

}  // namespace replay
