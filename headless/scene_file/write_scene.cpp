#include <algorithm>
#include <map>
#include <unordered_map>
#include <utility>

#include "headless/breaches/breach_book.h"
#include "headless/classes/class_registry.h"
#include "headless/scene/scene.h"
#include "headless/scene/time_and_units.h"
#include "headless/scene_file/atomic_file.h"
#include "headless/scene_file/chunk_fields.h"
#include "headless/scene_file/file_errors.h"
#include "headless/scene_file/file_progress.h"
#include "headless/scene_file/scene_chunks.h"
#include "headless/scene_file/scene_document.h"
#include "headless/scene_file/scene_file.h"
#include "host/time.h"
#include "host/units.h"

namespace headless {
namespace {

// The name is the class's own, or else the one under which it was made known.
StoredClass ClassOf(ReferenceTarget& object) {
    StoredClass type{object.SuperClassID(), object.ClassID(), {}};
    object.GetClassName(type.name);
    if (!type.name.empty()) return type;
    if (ClassDesc* descriptor = TheClasses().Find(type.superClass, type.id)) {
        if (const char* name = descriptor->ClassName()) type.name = name;
    }
    return type;
}

// `save` into a sink, behind what is there; what it leaves open is closed, and it can close nothing
// else. Throws if it failed, saying whose it is.
template <class Save>
void SaveInto(ByteSink& sink, const std::string& path, const std::string& name, Save save) {
    ChunkWriter writer(sink);
    std::string reason;
    try {
        if (save(&writer) == IO_OK || writer.HasFailed()) {
            writer.CloseAll();
            return;
        }
    } catch (...) {
        reason = " (" + ThrownWords() + ")";
    }
    throw SceneFileError(path + ": the file is not written, since " + name +
                         " could not save itself" + reason);
}

struct UtilityBytes {
    StoredClass type;
    std::vector<std::byte> chunks;
};

// What is written of the utilities, in the order of their classes.
using UtilityChunks = std::map<ClassKey, UtilityBytes>;

UtilityChunks SaveUtilities(const std::string& path, std::span<const RunningUtility> running,
                            std::span<const KeptChunks> kept) {
    UtilityChunks chunks;
    for (const RunningUtility& utility : running) {
        ClassDesc& descriptor = *utility.descriptor;
        const char* name = descriptor.ClassName();
        StoredClass type{descriptor.SuperClassID(), descriptor.ClassID(), name ? name : ""};
        MemorySink sink;
        const HostEvent event("the saving", type.name.c_str());
        SaveInto(sink, path, type.name, [&](ISave* save) { return utility.utility->Save(save); });
        if (sink.Size() > 0) chunks.insert({type.Key(), {type, sink.Take()}});
    }
    for (const KeptChunks& left : kept) {
        UtilityBytes& bytes =
            chunks.try_emplace(left.type.Key(), UtilityBytes{left.type, {}}).first->second;
        bytes.chunks = WithKept(left, std::move(bytes.chunks));
    }
    return chunks;
}

class SceneWriter {
  public:
    SceneWriter(const std::string& path, AtomicFile& file)
        : path_(path), file_(file), nodes_(TheScene().InOrder()) {
        for (std::size_t i = 0; i < nodes_.size(); ++i)
            nodeIndices_.emplace(nodes_[i], static_cast<std::uint32_t>(i));
    }

    void Write(const UtilityChunks& utilities) {
        WriteHeader();
        WriteSettings();
        for (SceneNode* node : nodes_) {
            for (int i = 0; i < node->NumRefs(); ++i)
                ReferenceTo(node->GetReference(i));
        }
        for (std::size_t i = 0; i < objects_.size(); ++i) {
            WriteObject(*objects_[i]);
            TellWritten(i + 1);
        }
        for (std::size_t i = 0; i < nodes_.size(); ++i) {
            WriteNode(*nodes_[i]);
            TellWritten(objects_.size() + i + 1);
        }
        for (const auto& [key, chunks] : utilities)
            WriteUtility(chunks);
        WriteEnd(utilities.size());
    }

  private:
    // Objects are numbered as they are met.
    StoredReference ReferenceTo(RefTargetHandle target) {
        if (!target) return {};
        if (auto* node = dynamic_cast<SceneNode*>(target)) {
            const auto found = nodeIndices_.find(node);
            if (found == nodeIndices_.end()) return {};
            return {StoredTarget::kNode, found->second};
        }
        const auto next = static_cast<std::uint32_t>(objects_.size());
        const auto [place, isNew] = objectIndices_.try_emplace(target, next);
        if (isNew) objects_.push_back(target);
        return {StoredTarget::kObject, place->second};
    }

    // How many objects there are is known for certain when the last one is written.
    void TellWritten(std::size_t parts) const {
        TellDone("Writing", parts, objects_.size() + nodes_.size());
    }

    void WriteHeader() {
        file_.Sink().Append(std::as_bytes(std::span(kSceneMagic)));
        file_.Sink().Append(LittleEndian<sizeof kSceneVersion>(kSceneVersion));
    }

    void WriteSettings() {
        TopChunk chunk(file_.Sink(), kSettingsChunk);
        int unitType = 0;
        float unitScale = 1;
        GetMasterUnitInfo(&unitType, &unitScale);
        chunk.Number(static_cast<std::int32_t>(unitType));
        chunk.Float(unitScale);
        chunk.Number(static_cast<std::int32_t>(GetFrameRate()));
        chunk.Number(static_cast<std::int32_t>(GetTicksPerFrame()));
        chunk.Number(CurrentTime());
        chunk.Number(AnimationRange().Start());
        chunk.Number(AnimationRange().End());
        chunk.Number(TheScene().LastHandle());
        End(chunk);
    }

    void WriteObject(ReferenceTarget& object) {
        const StoredClass type = ClassOf(object);
        TopChunk chunk(file_.Sink(), kObjectChunk);
        chunk.Class(type);
        WriteReferences(chunk, object);
        SaveInto(file_.Sink(), path_, type.name, [&](ISave* save) { return object.Save(save); });
        End(chunk);
    }

    void WriteNode(SceneNode& node) {
        TopChunk chunk(file_.Sink(), kNodeChunk);
        chunk.Number(node.GetHandle());
        const auto parent = nodeIndices_.find(node.Parent());
        chunk.Number(parent != nodeIndices_.end() ? parent->second : kNoStoredParent);
        chunk.Text(node.Name());
        const unsigned flags =
            (node.IsHidden(0, false) ? kHiddenFlag : 0U) | (node.Selected() ? kSelectedFlag : 0U);
        chunk.Number(static_cast<std::uint8_t>(flags));
        chunk.Number(node.GetWireColor());
        chunk.Number(static_cast<std::uint32_t>(node.UserProps().size()));
        for (const auto& [key, value] : node.UserProps()) {
            chunk.Text(key);
            chunk.Text(value);
        }
        WriteReferences(chunk, node);
        End(chunk);
    }

    void WriteReferences(TopChunk& chunk, ReferenceMaker& maker) {
        const int count = maker.NumRefs();
        chunk.Number(static_cast<std::uint32_t>(count));
        for (int i = 0; i < count; ++i) {
            const StoredReference reference = ReferenceTo(maker.GetReference(i));
            chunk.Number(static_cast<std::uint8_t>(reference.kind));
            chunk.Number(reference.index);
        }
    }

    void WriteUtility(const UtilityBytes& chunks) {
        TopChunk chunk(file_.Sink(), kUtilityChunk);
        chunk.Class(chunks.type);
        chunk.Bytes(chunks.chunks);
        End(chunk);
    }

    void WriteEnd(std::size_t utilities) {
        TopChunk chunk(file_.Sink(), kEndChunk);
        chunk.Number(static_cast<std::uint32_t>(objects_.size()));
        chunk.Number(static_cast<std::uint32_t>(nodes_.size()));
        chunk.Number(static_cast<std::uint32_t>(utilities));
        End(chunk);
    }

    void End(TopChunk& chunk) const {
        if (!chunk.End()) file_.FailToWrite();
    }

    const std::string& path_;
    AtomicFile& file_;
    std::vector<SceneNode*> nodes_;
    std::unordered_map<const SceneNode*, std::uint32_t> nodeIndices_;
    std::vector<ReferenceTarget*> objects_;
    std::unordered_map<ReferenceTarget*, std::uint32_t> objectIndices_;
};

// A scene that could not be opened again takes nobody's place.
void CheckWritten(const std::string& written, const std::string& path) {
    FileSource source(written);
    const std::string place = NotWritten(path);
    CheckDocument(ReadDocument(source, place), place);
}

}  // namespace

// The utilities come first: what they do to the nodes as they save belongs to the scene.
void WriteSceneFile(const std::string& path, std::span<const RunningUtility> running,
                    std::span<const KeptChunks> kept) {
    const UtilityChunks utilities = SaveUtilities(path, running, kept);
    AtomicFile file(path);
    SceneWriter(path, file).Write(utilities);
    file.Close();
    CheckWritten(file.WrittenPath(), path);
    SweepAbandonedSaves(file.TakePlace());
}

}  // namespace headless
