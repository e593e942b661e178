#pragma once

// Marks what the stand-in host offers to those who drive it. Its library, and whoever is linked
// with that, are built with what marks an export or an import on their system.
#ifndef HEADLESS_API
#define HEADLESS_API
#endif
