#pragma once

#include <string>

namespace headless {

// The time in which the scene is replaced, written or added to. It lasts to the announcement that
// the work is done; who calls back before that cannot begin another such work.
class FileWork {
  public:
    FileWork();
    ~FileWork();
    FileWork(const FileWork&) = delete;
    FileWork& operator=(const FileWork&) = delete;

    // Why such work cannot begin now; empty if it can.
    static std::string Hindrance();
};

}  // namespace headless
