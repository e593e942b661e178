#include <cmath>

#include "headless/scene/scene.h"
#include "headless/scene/selection.h"
#include "headless/scene/time_and_units.h"
#include "headless/scene_file/build_objects.h"
#include "headless/scene_file/chunk_fields.h"
#include "headless/scene_file/file_progress.h"
#include "headless/scene_file/scene_document.h"
#include "headless/scene_file/scene_file.h"
#include "host/time.h"
#include "host/units.h"

namespace headless {
namespace {

NodeLook LookOf(const StoredNode& stored) {
    NodeLook look{stored.name, stored.isHidden, stored.wireColour, {}};
    look.userProps.insert(stored.userProperties.begin(), stored.userProperties.end());
    return look;
}

// With their references, and each under its parent.
void PutIntoScene(const SceneDocument& document, BuiltObjects& objects,
                  const std::vector<NodePtr>& nodes) {
    for (std::size_t i = 0; i < nodes.size(); ++i)
        nodes[i]->SetLook(LookOf(document.nodes[i]));
    objects.PointReferences(nodes);
    Scene& scene = TheScene();
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        const std::uint32_t parent = document.nodes[i].parent;
        scene.Add(nodes[i], parent == kNoStoredParent ? *scene.Root() : *nodes[parent]);
    }
}

void RestoreSettings(const StoredSettings& settings) {
    SetMasterUnits(settings.unitType, settings.unitScale);
    RestoreTimeline(settings.frameRate, settings.ticksPerFrame, settings.range, settings.time);
    TheScene().SetLastHandle(settings.lastHandle);
}

void RestoreSelection(const SceneDocument& document, const std::vector<NodePtr>& nodes) {
    std::vector<SceneNode*> selected;
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        if (document.nodes[i].isSelected) selected.push_back(nodes[i].get());
    }
    SelectNodes(selected, true);
}

bool IsSameUnit(const StoredSettings& settings) {
    constexpr double kTolerance = 1e-6;  // of a scale that is a float
    const double stored = MetresPerUnit(settings.unitType, settings.unitScale);
    const double own = GetMasterScale(UNITS_METERS);
    return std::abs(stored - own) <= kTolerance * own;
}

}  // namespace

SceneFileReader ReadTold(const std::string& path) {
    const ToldFile told(path);
    return SceneFileReader(path);
}

SceneFileReader::SceneFileReader(const std::string& path) : path_(path) {
    auto file = std::make_unique<FileSource>(path);
    if (!file->IsOpen()) throw SceneFileError(path + ": the file cannot be opened");
    source_ = std::move(file);
    document_ = ReadDocument(*source_, path_);
    CheckDocument(document_, path_);
}

std::vector<std::byte> SceneFileReader::BytesOf(const StoredRange& range) {
    std::vector<std::byte> bytes(static_cast<std::size_t>(range.Size()));
    if (source_->ReadAt(range.begin, bytes) != bytes.size())
        FailAt(path_, range.begin, "the file cannot be read");
    return bytes;
}

std::vector<std::string> SceneFileReader::OpenIntoScene() {
    const TimeValue before = CurrentTime();
    RestoreSettings(document_.settings);
    std::vector<NodePtr> nodes;  // beyond the objects, which nodes that fail would end
    BuiltObjects objects(*this);
    for (const StoredNode& stored : document_.nodes)
        nodes.push_back(SceneNode::New(stored.handle));
    PutIntoScene(document_, objects, nodes);
    RestoreSelection(document_, nodes);
    if (CurrentTime() != before) TellTime();
    return objects.Complaints();
}

std::vector<SceneNode*> SceneFileReader::MergeIntoScene(std::vector<std::string>& complaints) {
    const StoredSettings& settings = document_.settings;
    if (!IsSameUnit(settings))
        throw SceneFileError(path_ + ": the file's unit has another size than the scene's");
    if (settings.frameRate * settings.ticksPerFrame != GetFrameRate() * GetTicksPerFrame())
        throw SceneFileError(path_ + ": a second of the file has another number of ticks");
    std::vector<NodePtr> nodes;  // as above
    BuiltObjects objects(*this);
    std::vector<SceneNode*> merged;
    for (std::size_t i = 0; i < document_.nodes.size(); ++i) {
        nodes.push_back(TheScene().NewNode());
        merged.push_back(nodes.back().get());
    }
    PutIntoScene(document_, objects, nodes);
    complaints.insert(complaints.end(), objects.Complaints().begin(), objects.Complaints().end());
    return merged;
}

}  // namespace headless
