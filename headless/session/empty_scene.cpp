#include "session/empty_scene.h"

#include "hold/undo_stream.h"
#include "host/hold.h"
#include "scene/scene.h"

namespace headless {
namespace {

// It would keep the undo stream from being emptied.
void EndForgottenHold() {
    if (theHold.Holding()) theHold.Accept("");
}

}  // namespace

void EmptyScene() {
    EndForgottenHold();
    UndoStream::Get().Flush();
    TheScene().Clear();
}

}  // namespace headless
