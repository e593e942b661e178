#pragma once

#include <cstddef>

#include "recorder/stream/operations.h"
#include "tvl/core_interface.h"
#include "tvl/undo.h"

// The operations of the table as they are called in C++.
namespace recorder {

using TVL::AdaptorInterface;
using TVL::CExtendable;
using TVL::CNode;
using TVL::CoreElement;
using TVL::CoreNode;
using TVL::CSnapshot;
using TVL::CSnapshot_Helper;
using TVL::CSnapshot_Lens;
using TVL::CSnapshot_Mesh;
using TVL::CSnapshot_Shape;
using TVL::CUndo;
using TVL::NodeListener;
using TVL::Util::MessageNode;

struct Routine {  // the Core's, which are no operations of an object
    void attach();
    void detach();
};

// What an operation is called by: &CNode::Show of CNode_Show.
template <Operation>
inline constexpr std::nullptr_t kMethodOf = nullptr;
#define RECORDER_METHOD(Class, Name, Said, Answered) \
    template <>                                      \
    inline constexpr auto kMethodOf<Operation::Class##_##Name> = &Class::Name;
RECORDER_OPERATIONS(RECORDER_METHOD)
#undef RECORDER_METHOD

}  // namespace recorder
