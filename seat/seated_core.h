#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <type_traits>

#include "headless/core_seat.h"
#include "platform/win32.h"
#include "tvl/core_interface.h"

namespace headless {

struct LibraryFreer {
    void operator()(HMODULE library) const noexcept { FreeLibrary(library); }
};
using LoadedLibrary = std::unique_ptr<std::remove_pointer_t<HMODULE>, LibraryFreer>;

// The library that has the seat, as the module knows it that the plug-in takes for the Core: it is
// loaded with the module and freed with it, so that the plug-in meets what it would meet with
// nothing in between. What comes of each attempt to attach it is remembered.
//
//   state       library  core  WhyAbsent
//   not called  null     null  what a trial shows
//   on trial    set      null  empty, or why it failed, until it is freed
//   attached    set      set   empty
//   gone        null     null  why the last attempt failed, or that it has left
class SEAT_API SeatedCore {
  public:
    // The process's, never destroyed: the module can come to it until the process has ended.
    static SeatedCore& Get();

    // A path, as LoadLibraryA takes it. An empty one leaves the seat empty; a library that is
    // loaded stays until the module goes.
    // With somebody in its place, `library` is only what it is called.
    void Take(std::string library, CoreBetween* between = nullptr, bool isInPlace = false);

    CoreInterface* Core() const { return core_; }  // null while none is attached
    TVL::AdaptorInterface* Adaptor() const { return adaptor_; }
    std::string WhyAbsent() const;

    // What the module does. False: the module is not to be loaded either.
    bool Load() noexcept;
    void Free() noexcept;

    // The routines. Whatever the Core's own throw comes out; so does that one of them is missing.
    std::uint32_t GetVersion();
    CoreInterface* Attach(TVL::AdaptorInterface* adaptor);
    void Detach(CoreInterface* core);

  private:
    SeatedCore() = default;
    ~SeatedCore() = default;

    void Call(const char* routine, const std::function<void()>& call);

    std::string path_;
    CoreBetween* between_ = nullptr;
    bool isInPlace_ = false;  // `between_` is the Core
    LoadedLibrary library_;
    CoreInterface* core_ = nullptr;  // the Core's own
    TVL::AdaptorInterface* adaptor_ = nullptr;
    std::string whyAbsent_;
    bool wasCalled_ = false;  // to the seat, by the plug-in
};

}  // namespace headless
