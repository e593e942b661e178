#pragma once

#include <cstddef>
#include <iosfwd>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>
#include <vector>

// What is printed, and for whom.
namespace headless {

// A person reads lines, and a program one JSON object. Each result of a verb says of itself how it
// is printed for either.
enum class Audience { kPerson, kProgram };

template <class Result>
void Print(std::ostream& out, const Result& result, Audience audience) {
    if (audience == Audience::kPerson)
        PrintForPerson(out, result);
    else
        PrintForProgram(out, result);
}

// A text of the code page; what is none of it comes out empty.
std::string Utf8(const std::string& text);

// In UTF-8. Texts of the code page are turned to it; where they need not be texts, what is none is
// replaced.
void PrintJson(std::ostream& out, nlohmann::ordered_json object);
void PrintJsonLine(std::ostream& out, nlohmann::ordered_json object);

// A count and its noun: "1 node", "2 nodes". `several` is for nouns that take more than an s.
std::string Counted(std::size_t count, const std::string& noun, const std::string& several = "");

// A name may hold anything; what would break a line for a person shows as a blank where it parts
// words, and else as a question mark.
std::string InTable(std::string text);
std::string Quoted(const std::string& text);

// A line each, behind what they are. Of equal ones the first stands for all, with their count.
inline constexpr char kComplaint[] = "Complaint: ";
inline constexpr char kMessageBox[] = "Message box: ";
void PrintEach(std::ostream& out, const std::string& what, const std::vector<std::string>& texts);

// Without their ends. Unlike a stream's they are not cut where memory runs out.
std::vector<std::string> LinesOf(std::string_view text);

// Without regard to the locale, and read back to the last bit.
std::string Plain(double number);

// For a person: with so many decimals at most, and none that is 0 at the end.
std::string Rounded(double number, int decimals);

// Rows of equally many cells, which stand below each other.
void PrintTable(std::ostream& out, const std::vector<std::vector<std::string>>& rows);

}  // namespace headless
