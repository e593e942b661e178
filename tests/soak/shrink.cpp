#include "tests/soak/shrink.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "platform/process.h"
#include "tests/support/folder/temporary_folder.h"

namespace soak {
namespace {

constexpr std::size_t kLastLines = 6;

std::string ReadText(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<std::string> LinesOf(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

// Without what is another at each run or step.
std::string Plain(std::string line) {
    std::erase_if(line, [](unsigned char letter) { return std::isdigit(letter) != 0; });
    return line.starts_with("FAILED") ? line : line.substr(0, line.find(" in "));
}

// What the plays said first of a fault, be it their own words, a test's or a sanitizer's.
std::string FaultIn(const std::vector<std::string>& lines) {
    for (const char* mark : {"FAILED: ", "SUMMARY: ", "runtime error: "})
        for (const std::string& line : lines)
            if (const auto at = line.find(mark); at != std::string::npos)
                return Plain(line.substr(at));
    return "the process is gone";
}

std::size_t LastStep(const std::vector<std::string>& lines) {
    std::size_t last = 0;
    for (const std::string& line : lines)
        if (!line.empty() && std::isdigit(static_cast<unsigned char>(line[0])))
            last = std::strtoul(line.c_str(), nullptr, 10);
    return last;
}

std::string Quoted(const std::string& text) {
    return '"' + text + '"';
}

// The command processor of Windows takes one pair of quotes off.
int RunCommand(const std::string& command) {
#ifdef _WIN32
    return std::system(Quoted(command).c_str());
#else
    return std::system(command.c_str());
#endif
}

void WriteLife(const std::string& name, const Life& life) {
    std::ofstream file(name, std::ios::binary);
    for (const StepChoices& step : life)
        file.write(reinterpret_cast<const char*>(step.data()), kStepBytes);
}

bool EndsAlike(const Stage& stage, const Life& life, const Ending& ending) {
    const Ending other = stage.Play(life);
    return !other.isGood && other.fault == ending.fault;
}

}  // namespace

Life ReadLife(const std::string& file) {
    const std::string bytes = ReadText(file);
    if (bytes.empty()) throw std::runtime_error(file + " cannot be read, or is empty");
    Life life(bytes.size() / kStepBytes);
    for (std::size_t index = 0; index < life.size() * kStepBytes; ++index)
        life[index / kStepBytes][index % kStepBytes] = static_cast<std::uint8_t>(bytes[index]);
    return life;
}

Ending Stage::Play(const Life& life) const {
    WriteLife(file, life);
    const std::string log = file + ".log";
    const std::string command =
        Quoted(program) + " --play " + Quoted(file) + " >" + Quoted(log) + " 2>&1";
    Ending ending;
    ending.isGood = RunCommand(command) == 0;
    ending.said = ReadText(log);
    const std::vector<std::string> lines = LinesOf(ending.said);
    ending.step = LastStep(lines);
    ending.fault = FaultIn(lines);
    const std::size_t from = lines.size() - std::min(lines.size(), kLastLines);
    for (std::size_t index = from; index < lines.size(); ++index)
        ending.lastWords += lines[index] + '\n';
    return ending;
}

// Leaves out runs of steps, long ones first, as long as the life ends in the same way without them.
Life Shrink(const Stage& stage, Life life, const Ending& ending) {
    if (ending.step > 0 && ending.step < life.size()) life.resize(ending.step);
    for (std::size_t run = life.size() / 2; run > 0; run /= 2) {
        for (std::size_t from = 0; from < life.size();) {
            Life shorter = life;
            const auto first = shorter.begin() + static_cast<std::ptrdiff_t>(from);
            shorter.erase(first,
                          first + static_cast<std::ptrdiff_t>(std::min(run, life.size() - from)));
            if (!shorter.empty() && EndsAlike(stage, shorter, ending))
                life = std::move(shorter);
            else
                from += run;
        }
    }
    return life;
}

}  // namespace soak
