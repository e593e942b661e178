#pragma once

// Lets the panel that shows what is selected follow: it is told before the selection, or the
// transform controller of a selected node, changes, while the old one is still whole, and after.
namespace headless {

class EditWatcher {
  public:
    virtual void BeforeEditChange() = 0;
    virtual void AfterEditChange() = 0;

  protected:
    ~EditWatcher() = default;
};

void WatchEdits(EditWatcher* watcher);  // at most one; null for none

// Stands around such a change. Of nested ones only the outermost is told.
class EditChange {
  public:
    EditChange();
    ~EditChange();
    EditChange(const EditChange&) = delete;
    EditChange& operator=(const EditChange&) = delete;
};

}  // namespace headless
