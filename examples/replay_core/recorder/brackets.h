#pragma once

#include <cstdint>
#include <new>
#include <string>
#include <utility>

#include "replay_core/state/take.h"
#include "tvl/adaptor_interface.h"

namespace replay {

// Runs work whose failure is somebody's to tell. The result is null, or says in a few words what
// was thrown.
template <class Work>
const char* Guarded(const Work& work) noexcept {
    try {
        work();
        return nullptr;
    } catch (const std::bad_alloc&) {
        return "memory ran out";
    } catch (...) {
        return "the work broke off for a reason that is not known";
    }
}

// What is begun at the adaptor has to be ended, also on the way out of a failure. What the adaptor
// refused, with a status other than 0, has not begun. An end that throws all the same, since a
// record of the host's own may, has ended what it can.

// An undo group. What was done in it is taken back unless it is kept.
class UndoGroup {
  public:
    UndoGroup(TVL::AdaptorInterface& adaptor, std::string name)
        : adaptor_(adaptor),
          status_(adaptor.BeginUndoGroup(std::move(name))),
          isOpen_(status_ == 0) {}
    ~UndoGroup() {
        Guarded([this] {
            if (isOpen_) adaptor_.CancelUndoGroup();
        });
    }
    UndoGroup(const UndoGroup&) = delete;
    UndoGroup& operator=(const UndoGroup&) = delete;

    std::int32_t Status() const { return status_; }
    std::int32_t Keep() {
        isOpen_ = false;
        return adaptor_.EndUndoGroup();
    }

  private:
    TVL::AdaptorInterface& adaptor_;
    std::int32_t status_;
    bool isOpen_;
};

// Keys are made from here on.
class RecordingBracket {
  public:
    RecordingBracket(TVL::AdaptorInterface& adaptor, Take& take)
        : adaptor_(adaptor), status_(adaptor.BeginRecording({&take})) {}
    ~RecordingBracket() {
        Guarded([this] {
            if (status_ == 0) adaptor_.EndRecording();
        });
    }
    RecordingBracket(const RecordingBracket&) = delete;
    RecordingBracket& operator=(const RecordingBracket&) = delete;

    std::int32_t Status() const { return status_; }

  private:
    TVL::AdaptorInterface& adaptor_;
    std::int32_t status_;
};

// The keyboard, so that no shortcut of the host's gets in between.
class KeyboardFocus {
  public:
    explicit KeyboardFocus(TVL::AdaptorInterface& adaptor) : adaptor_(adaptor) {
        adaptor_.RequestFocus();
    }
    ~KeyboardFocus() {
        Guarded([this] { adaptor_.RestoreFocus(); });
    }
    KeyboardFocus(const KeyboardFocus&) = delete;
    KeyboardFocus& operator=(const KeyboardFocus&) = delete;

  private:
    TVL::AdaptorInterface& adaptor_;
};

}  // namespace replay
