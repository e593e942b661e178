#pragma once

#include "host/storage.h"
#include "tvl/xml_node.h"

// A plug-in's state as an earlier version stored it, in a tree of chunks. The reader stands inside
// the outermost one, and does so again afterwards:
//
//   any id                 container: first any chunk with the type, then any with the name
//   556                    container
//     557                  container, in any order; chunks of other ids are skipped
//       11   text          not used
//       12   text          the input profile, as XML
//       22   i32 and bytes a block of data, after its length
//     558                  container of entries, nothing else
//       23                 one scene node; chunks of other ids are skipped
//         40 u32           its handle
//         41 text          its name
//
// An element "TVL_Plugin" as it is stored today. If anything is missing, of another id or cut off,
// an empty node.
XMLNode ReadOlderState(ILoad& load);
