#include "platform/message_box.h"

#include <cstdio>
#include <utility>

#include "platform/posix/guarded.h"

namespace platform {
namespace {

// Never destroyed: a message box can be asked for while the program ends.
MessageBoxHandler& Handler() {
    static auto* const handler = new MessageBoxHandler;
    return *handler;
}

void Show(const MessageBoxRequest& request) {
    // A copy, since the handler can replace itself.
    if (const MessageBoxHandler handler = Handler()) {
        handler(request);
    } else {
        std::fprintf(stderr, "%s: %s\n", request.caption.c_str(), request.text.c_str());
    }
}

}  // namespace

MessageBoxHandler SetMessageBoxHandler(MessageBoxHandler handler) {
    return std::exchange(Handler(), std::move(handler));
}

}  // namespace platform

extern "C" int MessageBoxA(HWND owner, LPCSTR text, LPCSTR caption, UINT style) {
    return platform::Guarded<int>(IDOK, [&] {
        platform::Show({.owner = owner,
                        .text = text == nullptr ? "" : text,
                        .caption = caption == nullptr ? "Error" : caption,
                        .style = style});
        return IDOK;
    });
}
