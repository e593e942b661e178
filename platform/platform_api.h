#pragma once

// Marks what the platform library exports.
#define PLATFORM_API __attribute__((visibility("default")))
