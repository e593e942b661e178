#pragma once

// Marks what the host provides. Its library, and whoever is linked with that, are built with what
// marks an export or an import on their system.
#ifndef HOST_API
#define HOST_API
#endif
