#include <algorithm>

#include "headless/classes/class_registry.h"
#include "headless/scene_file/scene_chunks.h"
#include "headless/scene_file/scene_file.h"
#include "headless/scene_file/stored_keys.h"
#include "headless/scene_file_view.h"
#include "headless/storage/chunks.h"

namespace headless {
namespace {

// The user property in which a saved node carries what the plug-in has noted on it.
constexpr char kTagProperty[] = "TVL_tag";

ClassInFile ViewOf(const StoredClass& type) {
    return {type.superClass, type.id, type.name};
}

class FileViewer {
  public:
    explicit FileViewer(const std::string& path)
        : reader_(ReadTold(path)), document_(reader_.Document()) {}

    SceneFileView View() {
        SceneFileView view = SettingsView();
        for (const StoredNode& node : document_.nodes)
            view.nodes.push_back(ViewOfNode(node));
        for (const StoredUtility& utility : document_.utilities)
            view.utilities.push_back({ViewOf(utility.type), ChunksIn(utility.chunks)});
        for (const StoredObject& object : document_.objects)
            AddClass(view.classes, object.type);
        return view;
    }

  private:
    SceneFileView SettingsView() const {
        const StoredSettings& settings = document_.settings;
        SceneFileView view;
        view.unitType = settings.unitType;
        view.unitScale = settings.unitScale;
        view.frameRate = settings.frameRate;
        view.ticksPerFrame = settings.ticksPerFrame;
        view.time = settings.time;
        view.range = settings.range;
        return view;
    }

    NodeInFile ViewOfNode(const StoredNode& node) {
        NodeInFile view;
        view.handle = node.handle;
        if (node.parent != kNoStoredParent) view.parent = document_.nodes[node.parent].handle;
        view.name = node.name;
        view.hidden = node.isHidden;
        view.selected = node.isSelected;
        for (const auto& [key, value] : node.userProperties)
            if (key == kTagProperty) view.tagBytes = value.size();
        if (const StoredObject* object = Target(node, kObjectReference))
            view.object = ViewOf(object->type);
        if (const StoredObject* controller = Target(node, kTransformReference)) {
            view.controller = ViewOf(controller->type);
            view.keys = KeysView(*controller);
        }
        return view;
    }

    const StoredObject* Target(const StoredNode& node, std::size_t index) const {
        const StoredReference& reference = node.references[index];
        return reference.kind == StoredTarget::kObject ? &document_.objects[reference.index]
                                                       : nullptr;
    }

    KeyView KeysView(const StoredObject& controller) {
        const auto keys = KeysOf(controller.type, reader_.BytesOf(controller.bytes)).keys;
        KeyView view;
        view.count = static_cast<int>(keys.size());
        view.storedBytes = static_cast<std::size_t>(controller.bytes.Size());
        if (keys.empty()) return view;
        view.first = keys.front().time;
        view.last = keys.back().time;
        return view;
    }

    std::vector<ChunkInFile> ChunksIn(const StoredRange& range) {
        std::vector<ChunkInFile> chunks;
        ChunkReader level(reader_.Source(), range.begin, range.end);
        while (level.OpenChunk() == IO_OK) {
            chunks.push_back({level.CurChunkID(), level.Left()});
            level.CloseChunk();
        }
        return chunks;
    }

    static void AddClass(std::vector<ClassInFile>& classes, const StoredClass& type) {
        const bool isKnown = std::any_of(classes.begin(), classes.end(), [&](const auto& known) {
            return KeyOf(known.superClass, known.id) == type.Key();
        });
        if (!isKnown) classes.push_back(ViewOf(type));
    }

    SceneFileReader reader_;
    const SceneDocument& document_;
};

}  // namespace

SceneFileView ViewSceneFile(const std::string& path) {
    return FileViewer(path).View();
}

bool IsClassLoaded(const ClassInFile& type) {
    return TheClasses().Find(type.superClass, type.id) != nullptr;
}

}  // namespace headless
