#pragma once

// Where the rooms of the host write down what a guest should not have asked.
namespace headless {

inline constexpr const char* kGone = "the node is not in the scene";

// Both outlive the call. The event is the innermost that is under way.
void Book(const char* what, const char* call);

// Something that the host does in which guests are called. Texts outlive the event.
class HostEvent {
  public:
    explicit HostEvent(const char* what, const char* guest = nullptr);
    HostEvent(const char* what, int number);
    ~HostEvent();
    HostEvent(const HostEvent&) = delete;
    HostEvent& operator=(const HostEvent&) = delete;

  private:
    friend void Book(const char* what, const char* call);

    const char* what_;
    const char* guest_ = nullptr;  // the class that is called
    int number_ = 0;               // 0: none
    HostEvent* outer_;
};

// Whether the session has ended, so that nobody is there to be asked. Nothing is booked before the
// first one, since modules may be loaded before it.
inline constinit bool hostIsDown = false;

// To be called where a guest comes in.
inline void ExpectHost(const char* call) {
    if (hostIsDown) Book("the host has shut down", call);
}

}  // namespace headless
