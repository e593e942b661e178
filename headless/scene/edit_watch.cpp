#include "headless/scene/edit_watch.h"

namespace headless {
namespace {

EditWatcher* watcher = nullptr;
int changes = 0;  // that are under way

}  // namespace

void WatchEdits(EditWatcher* next) {
    watcher = next;
}

EditChange::EditChange() {
    if (changes++ == 0 && watcher) watcher->BeforeEditChange();
}

EditChange::~EditChange() {
    if (--changes == 0 && watcher) watcher->AfterEditChange();
}

}  // namespace headless
