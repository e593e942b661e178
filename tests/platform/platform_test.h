#pragma once

#include <gtest/gtest.h>

#include "platform/message_box.h"
#include "platform/process.h"
#include "platform/testing.h"
#include "tests/support/folder/temporary_folder.h"

using namespace std::string_literals;

// What is none of the platform's handles, though it looks like one.
template <class Handle>
Handle MadeUp() {
    static int local = 0;
    return static_cast<Handle>(static_cast<void*>(&local));
}
