#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace headless {

// What a Core wrote into its report file: lines `key=value`. A key that it left out is empty or 0.
// A list is a count under its own key, and entries whose keys bear a number from 1 on.
class CoreReport {
  public:
    // An absent file is an empty report. Throws a Failure if it cannot be read to its end.
    static CoreReport Read(const std::string& path);

    std::string Text(const std::string& key) const;
    double Number(const std::string& key) const;
    // Numbers with blanks between; `count` of them, 0 for those that are missing.
    std::vector<double> Numbers(const std::string& key, std::size_t count) const;
    std::size_t Count(const std::string& key) const;

    // How many entries a list has; no more than there are lines.
    std::size_t Entries(const std::string& key) const;

    // The entries of a list of texts, under `singular` and a number.
    std::vector<std::string> Texts(const std::string& plural, const std::string& singular) const;
    bool IsEmpty() const { return values_.empty(); }

  private:
    std::map<std::string, std::string> values_;
};

}  // namespace headless
