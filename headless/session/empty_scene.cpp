#include "headless/session/empty_scene.h"

#include "headless/hold/undo_stream.h"
#include "headless/scene/scene.h"
#include "host/hold.h"

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
