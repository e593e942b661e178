#include "seat/seated_core.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "foundation/thrown.h"
#include "platform/modules.h"
#include "platform/narrow_path.h"

namespace headless {
namespace {

// Messages of the system's and of the Core's can have line ends.
std::string InOneLine(std::string text) {
    std::ranges::replace_if(
        text, [](char c) { return c == '\n' || c == '\r'; }, ' ');
    return text;
}

// To be asked at once, since the system's word lasts no longer than to its next call.
std::string WhyNotLoaded(const std::string& path) {
    std::string words = platform::LastLoadFailureOf(path);
    std::error_code error;
    const std::string file = platform::FileToLoad(path);
    if (!std::filesystem::exists(platform::FromNarrow(file), error))
        return "there is no library " + file;
    return file + " cannot be loaded: " + InOneLine(std::move(words));
}

// Empty if it has all three.
std::string WhyNoCore(HMODULE library, const std::string& path) {
    for (const char* routine :
         {TVL::kGetVersionRoutine, TVL::kAttachRoutine, TVL::kDetachRoutine}) {
        if (!GetProcAddress(library, routine))
            return path + " exports no routine \"" + routine + '"';
    }
    return {};
}

std::string WhyNoMatch(std::uint32_t version, const std::string& path) {
    if (version == static_cast<std::uint32_t>(TVL::kInterfaceVersion)) return {};
    return path + " has version " + std::to_string(version) +
           " of the interface, and the adaptor has version " +
           std::to_string(TVL::kInterfaceVersion);
}

// As the plug-in would find it when it calls.
std::string WhyItWouldFail(const std::string& path) {
    const LoadedLibrary library(LoadLibraryA(path.c_str()));
    if (!library) return WhyNotLoaded(path);
    std::string why = WhyNoCore(library.get(), path);
    if (!why.empty()) return why;
    std::uint32_t version = 0;
    const auto getVersion =
        platform::Routine<TVL::GetVersionRoutine>(library.get(), TVL::kGetVersionRoutine);
    if (const auto thrown = TVL::ThrownBy([&] { version = getVersion(); }))
        return path + ": its routine getVersion threw: " + InOneLine(*thrown);
    return WhyNoMatch(version, path);
}

}  // namespace

SeatedCore& SeatedCore::Get() {
    static SeatedCore& seated = *new SeatedCore;
    return seated;
}

void SeatedCore::Take(std::string library, CoreBetween* between, bool isInPlace) {
    path_ = std::move(library);
    between_ = between;
    isInPlace_ = isInPlace;
    whyAbsent_.clear();
    wasCalled_ = false;
}

std::string SeatedCore::WhyAbsent() const {
    if (core_ || path_.empty()) return {};
    std::string why = wasCalled_ || isInPlace_ ? whyAbsent_ : WhyItWouldFail(path_);
    return why.empty() ? "the plug-in has not asked for " + path_ : why;
}

// What cannot be told for want of memory is not loaded either.
bool SeatedCore::Load() noexcept {
    const auto thrown = TVL::ThrownBy([this] {
        if (path_.empty()) return;
        wasCalled_ = true;
        whyAbsent_.clear();
        if (isInPlace_) return;
        library_.reset(LoadLibraryA(path_.c_str()));
        if (!library_) whyAbsent_ = WhyNotLoaded(path_);
    });
    return !thrown && (library_ || isInPlace_);
}

void SeatedCore::Free() noexcept {
    if (whyAbsent_.empty())
        TVL::ThrownBy([this] { whyAbsent_ = "the plug-in did not attach " + path_; });
    core_ = nullptr;
    adaptor_ = nullptr;
    library_.reset();
}

void SeatedCore::Call(const char* routine, const std::function<void()>& call) {
    try {
        call();
    } catch (...) {
        whyAbsent_ =
            path_ + ": its routine " + routine + " threw: " + InOneLine(TVL::ThrownWords());
        throw;
    }
}

// The first routine that is asked for, and so the place to tell that one is missing: the plug-in
// takes that for a version that it cannot be told.
std::uint32_t SeatedCore::GetVersion() {
    if (isInPlace_) return static_cast<std::uint32_t>(TVL::kInterfaceVersion);
    whyAbsent_ = WhyNoCore(library_.get(), path_);
    if (!whyAbsent_.empty()) throw std::runtime_error(whyAbsent_);
    std::uint32_t version = 0;
    Call(TVL::kGetVersionRoutine, [&] {
        version =
            platform::Routine<TVL::GetVersionRoutine>(library_.get(), TVL::kGetVersionRoutine)();
    });
    whyAbsent_ = WhyNoMatch(version, path_);
    return version;
}

CoreInterface* SeatedCore::Attach(TVL::AdaptorInterface* adaptor) {
    const CoreBetween::AttachCore attach =
        isInPlace_ ? nullptr
                   : platform::Routine<TVL::AttachRoutine>(library_.get(), TVL::kAttachRoutine);
    Call(TVL::kAttachRoutine,
         [&] { core_ = between_ ? between_->Attach(adaptor, attach) : attach(adaptor); });
    adaptor_ = core_ ? adaptor : nullptr;
    if (!core_) whyAbsent_ = path_ + " refused: its routine attach gave null";
    return core_;
}

void SeatedCore::Detach(CoreInterface* core) {
    const CoreBetween::DetachCore detach =
        isInPlace_ ? nullptr
                   : platform::Routine<TVL::DetachRoutine>(library_.get(), TVL::kDetachRoutine);
    whyAbsent_ = path_ + " has left";
    core_ = nullptr;
    adaptor_ = nullptr;
    Call(TVL::kDetachRoutine, [&] { between_ ? between_->Detach(core, detach) : detach(core); });
}

}  // namespace headless
