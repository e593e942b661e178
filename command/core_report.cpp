#include "command/core_report.h"

#include <algorithm>
#include <charconv>
#include <fstream>

#include "command/exit_status.h"

namespace headless {

CoreReport CoreReport::Read(const std::string& path) {
    CoreReport report;
    std::ifstream file(path, std::ios::binary);
    for (std::string line; std::getline(file, line);) {
        const std::size_t equals = line.find('=');
        if (equals != std::string::npos)
            report.values_[line.substr(0, equals)] = line.substr(equals + 1);
    }
    if (file.bad()) throw Failure(path + ": the Core's report cannot be read");
    return report;
}

std::string CoreReport::Text(const std::string& key) const {
    const auto found = values_.find(key);
    return found == values_.end() ? std::string() : found->second;
}

double CoreReport::Number(const std::string& key) const {
    return Numbers(key, 1).front();
}

std::vector<double> CoreReport::Numbers(const std::string& key, std::size_t count) const {
    const std::string text = Text(key);
    const char* const end = text.data() + text.size();
    std::vector<double> numbers(count);
    const char* at = text.data();
    for (double& number : numbers) {
        at = std::from_chars(at, end, number).ptr;
        if (at < end) ++at;
    }
    return numbers;
}

std::size_t CoreReport::Count(const std::string& key) const {
    const std::string text = Text(key);
    std::size_t count = 0;
    std::from_chars(text.data(), text.data() + text.size(), count);
    return count;
}

std::size_t CoreReport::Entries(const std::string& key) const {
    return std::min(Count(key), values_.size());
}

std::vector<std::string> CoreReport::Texts(const std::string& plural,
                                           const std::string& singular) const {
    std::vector<std::string> texts;
    for (std::size_t i = 1; i <= Entries(plural); ++i)
        texts.push_back(Text(singular + '.' + std::to_string(i)));
    return texts;
}

}  // namespace headless
