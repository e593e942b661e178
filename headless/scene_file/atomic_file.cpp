#include "headless/scene_file/atomic_file.h"

#include "headless/scene_file/scene_file.h"

namespace headless {
namespace {

[[noreturn]] void Fail(const std::string& path, const std::string& reason) {
    throw SceneFileError(NotWritten(path) + ": " + reason);
}

const std::string& Written(const platform::WholeFile& file, const std::string& path) {
    if (!file.Refusal().empty()) Fail(path, file.Refusal());
    return file.Path();
}

}  // namespace

std::string NotWritten(const std::string& path) {
    return path + ": the file cannot be written";
}

AtomicFile::AtomicFile(const std::string& path)
    : path_(path), file_(path), sink_(Written(file_, path)) {}

void AtomicFile::Close() {
    if (!sink_.Close()) FailToWrite();
}

std::string AtomicFile::TakePlace() {
    const std::string reason = file_.TakePlace();
    if (!reason.empty()) Fail(path_, reason);
    return file_.Place();
}

void AtomicFile::FailToWrite() const {
    Fail(path_, sink_.Failure().empty() ? "the bytes do not come back" : sink_.Failure());
}

}  // namespace headless
