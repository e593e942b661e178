#include "headless/session/file_work.h"

#include "host/hold.h"

namespace headless {
namespace {

bool isUnderWay = false;

}  // namespace

FileWork::FileWork() {
    isUnderWay = true;
}

FileWork::~FileWork() {
    isUnderWay = false;
}

std::string FileWork::Hindrance() {
    if (isUnderWay) return "another scene file is being opened, saved or merged";
    if (theHold.RestoreOrRedoing()) return "a step is being undone or redone";
    return {};
}

}  // namespace headless
