#include "platform/tools/script_tokens.h"

#include <cctype>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <map>
#include <string_view>
#include <utility>

#include "platform/tools/script_error.h"

namespace {

constexpr int kDeepestInclude = 20;

bool IsWordLetter(char letter) {
    return std::isalnum(static_cast<unsigned char>(letter)) != 0 || letter == '_';
}

std::string_view TrimStart(std::string_view text) {
    const std::size_t start = text.find_first_not_of(" \t\r");
    return start == std::string_view::npos ? std::string_view{} : text.substr(start);
}

std::string TakeWord(std::string_view& text) {
    std::size_t end = 0;
    while (end < text.size() && IsWordLetter(text[end]))
        ++end;
    std::string word(text.substr(0, end));
    text = TrimStart(text.substr(end));
    return word;
}

class ScriptReader {
  public:
    TokenizedScript Read(const std::string& path) {
        place_.file = path;
        ReadFile(path);
        return std::move(script_);
    }

  private:
    // A place in the file that is being read.
    struct Place {
        std::string file;
        int line = 0;
        bool inComment = false;
        std::vector<bool> conditions;  // of the #ifs that are open here
    };

    [[noreturn]] void Fail(const std::string& message) const {
        throw ScriptError(place_.file, place_.line, message);
    }

    void ReadFile(const std::string& path) {
        if (++depth_ > kDeepestInclude) Fail("files include each other");
        std::ifstream stream(path, std::ios::binary);
        if (!stream || std::filesystem::is_directory(path)) Fail("cannot read '" + path + "'");
        script_.files.insert(path);
        const Place outer = std::exchange(place_, Place{path, 0, false, {}});
        for (std::string line; std::getline(stream, line);) {
            ++place_.line;
            ReadLine(DropComments(line));
        }
        if (place_.inComment) Fail("a comment has no end");
        if (!place_.conditions.empty()) Fail("an #if has no #endif");
        --depth_;
        place_ = outer;
    }

    // Comments become a blank; texts in quotes keep what looks like one.
    std::string DropComments(std::string_view line) {
        std::string kept;
        bool inText = false;
        for (std::size_t at = 0; at < line.size(); ++at) {
            const std::string_view pair = line.substr(at, 2);
            if (place_.inComment) {
                if (pair != "*/") continue;
                place_.inComment = false;
                ++at;
                kept += ' ';
            } else if (!inText && pair == "//") {
                break;
            } else if (!inText && pair == "/*") {
                place_.inComment = true;
                ++at;
            } else {
                if (line[at] == '"') inText = !inText;
                kept += line[at];
            }
        }
        return kept;
    }

    bool IsSkipping() const {
        for (const bool condition : place_.conditions) {
            if (!condition) return true;
        }
        return false;
    }

    void ReadLine(std::string_view line) {
        line = TrimStart(line);
        if (line.starts_with('#')) {
            ReadDirective(TrimStart(line.substr(1)));
        } else if (!IsSkipping()) {
            while (!line.empty())
                line = TrimStart(ReadToken(line));
        }
    }

    void ReadDirective(std::string_view rest) {
        const std::string directive = TakeWord(rest);
        if (directive == "ifdef" || directive == "ifndef") {
            const bool isDefined = numbers_.contains(TakeWord(rest));
            place_.conditions.push_back(isDefined == (directive == "ifdef"));
        } else if (directive == "else" || directive == "endif") {
            if (place_.conditions.empty()) Fail("#" + directive + " without an #if");
            const bool condition = place_.conditions.back();
            place_.conditions.pop_back();
            if (directive == "else") place_.conditions.push_back(!condition);
        } else if (IsSkipping() || directive == "pragma") {
            return;
        } else if (directive == "define") {
            Define(rest);
        } else if (directive == "include") {
            Include(rest);
        } else {
            Fail("unknown directive '#" + directive + "'");
        }
    }

    void Define(std::string_view rest) {
        const std::string name = TakeWord(rest);
        if (name.empty()) Fail("#define without a name");
        numbers_[name] = rest.empty() ? 0 : Number(TakeWord(rest));
    }

    void Include(std::string_view rest) {
        if (rest.starts_with('<')) return;
        const std::size_t end = rest.find('"', 1);
        if (!rest.starts_with('"') || end == std::string_view::npos)
            Fail("#include without a file");
        const auto folder = std::filesystem::path(place_.file).parent_path();
        ReadFile((folder / rest.substr(1, end - 1)).string());
    }

    long Number(std::string_view word) const {
        const bool isHexadecimal = word.starts_with("0x") || word.starts_with("0X");
        const std::string_view digits = isHexadecimal ? word.substr(2) : word;
        long number = 0;
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(),
                                                  number, isHexadecimal ? 16 : 10);
        if (error != std::errc{} || end != digits.data() + digits.size()) {
            Fail("'" + std::string(word) + "' is not a number");
        }
        return number;
    }

    void Add(Token::Kind kind, std::string text, long number = 0) {
        script_.tokens.push_back({kind, std::move(text), number, place_.file, place_.line});
    }

    // Returns what follows the token.
    std::string_view ReadToken(std::string_view line) {
        const char first = line.front();
        if (first == '"') return ReadText(line.substr(1));
        if (IsWordLetter(first)) {
            std::string_view rest = line;
            ReadWord(TakeWord(rest));
            return rest;
        }
        if (std::string_view(",|{}").find(first) == std::string_view::npos) {
            Fail(std::string("unexpected '") + first + "'");
        }
        Add(Token::Kind::Sign, std::string(1, first));
        return line.substr(1);
    }

    void ReadWord(const std::string& word) {
        const auto defined = numbers_.find(word);
        if (defined != numbers_.end()) {
            Add(Token::Kind::Number, word, defined->second);
        } else if (std::isdigit(static_cast<unsigned char>(word.front())) != 0) {
            Add(Token::Kind::Number, word, Number(word));
        } else {
            Add(Token::Kind::Word, word);
        }
    }

    // A quote inside the text is written twice.
    std::string_view ReadText(std::string_view line) {
        std::string text;
        for (std::size_t at = 0; at < line.size(); ++at) {
            if (line[at] != '"') {
                text += line[at];
            } else if (line.substr(at, 2) == "\"\"") {
                text += line[at++];
            } else {
                Add(Token::Kind::Text, std::move(text));
                return line.substr(at + 1);
            }
        }
        Fail("a text has no closing quote");
    }

    TokenizedScript script_;
    std::map<std::string, long> numbers_ = {{"RC_INVOKED", 1}};
    Place place_;
    int depth_ = 0;
};

}  // namespace

TokenizedScript ReadScript(const std::string& path) {
    return ScriptReader().Read(path);
}
