#pragma once

#include <string>
#include <utility>
#include <vector>

#include "platform/message_box.h"

// Takes every message box while it lives.
class MessageRecorder {
  public:
    MessageRecorder()
        : previous_(platform::SetMessageBoxHandler([this](const auto& request) {
              boxes.push_back(request);
              texts.push_back(request.text);
          })) {}
    ~MessageRecorder() { platform::SetMessageBoxHandler(std::move(previous_)); }
    MessageRecorder(const MessageRecorder&) = delete;
    MessageRecorder& operator=(const MessageRecorder&) = delete;

    std::vector<platform::MessageBoxRequest> boxes;
    std::vector<std::string> texts;

  private:
    platform::MessageBoxHandler previous_;
};
