#pragma once

#include <cstddef>
#include <map>
#include <string>

namespace headless {

// What a Core wrote into its report file: lines `key=value`. A key that it left out is empty or 0.
class CoreReport {
  public:
    // An absent file is an empty report.
    static CoreReport Read(const std::string& path);

    std::string Text(const std::string& key) const;
    double Number(const std::string& key) const;
    bool IsEmpty() const { return values_.empty(); }

  private:
    std::map<std::string, std::string> values_;
};

}  // namespace headless
