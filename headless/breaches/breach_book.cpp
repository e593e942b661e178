#include "headless/breaches/breach_book.h"

#include <utility>

#include "headless/breaches.h"
#include "host/tab.h"

namespace headless {
namespace {

HostEvent* innermost = nullptr;

// Never destroyed: guests come in until the process has ended.
std::vector<Breach>& TheBook() {
    static std::vector<Breach>& book = *new std::vector<Breach>;
    return book;
}

}  // namespace

HostEvent::HostEvent(const char* what, const char* guest)
    : what_(what), guest_(guest), outer_(std::exchange(innermost, this)) {}

HostEvent::HostEvent(const char* what, int number)
    : what_(what), number_(number), outer_(std::exchange(innermost, this)) {}

HostEvent::~HostEvent() {
    innermost = outer_;
}

void Book(const char* what, const char* call) {
    std::string events;
    for (const HostEvent* event = innermost; event; event = event->outer_) {
        if (!events.empty()) events += ", ";
        events += event->what_;
        if (event->number_ != 0) events += ' ' + std::to_string(event->number_);
        if (event->guest_) events += std::string(" of ") + event->guest_;
    }
    TheBook().push_back({what, call, std::move(events)});
}

std::string ToLine(const Breach& breach) {
    std::string line = breach.call + ": " + breach.what;
    if (!breach.event.empty()) line += " (" + breach.event + ')';
    return line;
}

std::vector<Breach> TakeBreaches() {
    return std::exchange(TheBook(), {});
}

std::vector<std::string> TakeBreachLines() {
    std::vector<std::string> lines;
    for (const Breach& breach : TakeBreaches())
        lines.push_back(ToLine(breach));
    return lines;
}

}  // namespace headless

bool TabHolds(int index, int count) {
    if (index >= 0 && index < count) return true;
    headless::Book("the table has no such entry", "Tab::operator[]");
    return false;
}
