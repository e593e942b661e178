#include "platform/interrupt.h"

#include <atomic>
#include <cerrno>
#include <csignal>

namespace platform {
namespace {

std::atomic<bool> wanted = false;
static_assert(std::atomic<bool>::is_always_lock_free);  // a signal comes at any moment

int living = 0;
bool isListening = false;
struct sigaction before {};  // of the outermost one's begin

bool IsHandler(const struct sigaction& action) {
    return (action.sa_flags & SA_SIGINFO) != 0 ||
           (action.sa_handler != SIG_DFL && action.sa_handler != SIG_IGN);
}

void HandOn(int signal, siginfo_t* info, void* context) {
    if ((before.sa_flags & SA_SIGINFO) != 0)
        before.sa_sigaction(signal, info, context);
    else
        before.sa_handler(signal);
}

void Note(int signal, siginfo_t* info, void* context) {
    const int error = errno;
    const bool isSecond = wanted.exchange(true);
    if (IsHandler(before)) {
        HandOn(signal, info, context);
    } else if (isSecond) {
        sigaction(signal, &before, nullptr);
        raise(signal);  // delivered when this returns
    }
    errno = error;
}

bool IsIgnored(const struct sigaction& action) {
    return !IsHandler(action) && action.sa_handler == SIG_IGN;
}

}  // namespace

// What reads and writes files is not to be broken off by it.
Interrupt::Interrupt() {
    if (living++ > 0) return;
    sigaction(SIGINT, nullptr, &before);
    isListening = !IsIgnored(before);
    if (!isListening) return;
    struct sigaction noting {};
    noting.sa_sigaction = &Note;
    noting.sa_flags = SA_SIGINFO | SA_RESTART;
    sigemptyset(&noting.sa_mask);
    sigaction(SIGINT, &noting, nullptr);
}

Interrupt::~Interrupt() {
    if (--living > 0) return;
    if (isListening) sigaction(SIGINT, &before, nullptr);
    wanted = false;
}

bool Interrupt::IsWanted() {
    return wanted;
}

void Interrupt::Meet() {
    wanted = false;
}

}  // namespace platform
