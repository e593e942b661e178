#include "interchange/gltf_scene.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <utility>

#include "platform/narrow_path.h"

namespace interchange {
namespace {

using Json = nlohmann::ordered_json;

// Numbers of the format.
constexpr int kUnsignedInts = 5125;
constexpr int kFloats = 5126;
constexpr int kForVertices = 34962;
constexpr int kForIndices = 34963;

// Names are texts of the code page.
std::string Utf8(const std::string& text) {
    const std::u8string utf8 = platform::FromNarrow(text).u8string();
    return {utf8.begin(), utf8.end()};
}

struct NamedChannel {
    const char* path;
    const char* type;
    Channel NodeMotion::*channel;
};
constexpr NamedChannel kChannels[] = {{"translation", "VEC3", &NodeMotion::translation},
                                      {"rotation", "VEC4", &NodeMotion::rotation},
                                      {"scale", "VEC3", &NodeMotion::scale}};

// How far the lens sees from bottom to top, radians.
double HeightView(const Lens& lens, double aspect) {
    const double across = std::tan(lens.fieldOfView / 2);
    if (lens.fieldOfViewType == 0) return 2 * std::atan(across / aspect);
    if (lens.fieldOfViewType == 2) return 2 * std::atan(across / std::hypot(1, aspect));
    return lens.fieldOfView;
}

// Null for a lens that no camera has.
Json CameraOf(const TakeNode& node, Loss& loss) {
    constexpr double kWidth = 16, kHeight = 9;  // of most screens
    constexpr double kNearest = 0.01;           // metres that are seen
    const double view = HeightView(*node.lens, kWidth / kHeight);
    if (!(view > 0 && view < std::numbers::pi)) {
        loss.words.push_back("the lens of \"" + node.name + '"');
        return {};
    }
    if (node.lens->fieldOfViewType != 1)
        loss.words.push_back("the lens of \"" + node.name + "\" as it is, across its " +
                             (node.lens->fieldOfViewType == 0 ? "width" : "diagonal") +
                             ": its height is that of a picture of 16:9");
    if (node.lens->moves)
        loss.words.push_back("the motion of the lens of \"" + node.name +
                             "\": it stays as it is in the first frame");
    return {
        {"type", "perspective"},
        {"perspective", {{"aspectRatio", kWidth / kHeight}, {"yfov", view}, {"znear", kNearest}}}};
}

}  // namespace

bool ReadMotion::Moves() const {
    return std::ranges::any_of(nodes, [](const NodeMotion& node) {
        return std::ranges::any_of(kChannels, [&](const NamedChannel& name) {
            return !(node.*name.channel).keys.empty();
        });
    });
}

GltfScene::GltfScene(const std::vector<ReadMotion>& motions, std::vector<Loss>& losses) {
    json["asset"] = {{"version", "2.0"}, {"generator", "Tarvo Lumiset " LUMISET_VERSION}};
    json["scene"] = 0;
    json["scenes"] = Json::array({Json::object()});
    TellShapes(motions);
    motionStart_ = byteCount;
    motionView_ = json.value("bufferViews", Json::array()).size();
    for (std::size_t take = 0; take < motions.size(); ++take)
        TellNodes(motions[take], motions.size() > 1, losses[take]);
    if (byteCount > motionStart_) TellView(motionStart_, Json::object());
}

// All meshes have their bytes in two views.
void GltfScene::TellShapes(const std::vector<ReadMotion>& motions) {
    std::vector<SharedVertices::Mesh> meshes;
    for (const ReadMotion& motion : motions)
        for (const TakeNode& node : motion.take->nodes)
            meshes.push_back(vertices_.Add(node.shape));
    for (const SharedVertices::Mesh& mesh : meshes)
        meshes_.push_back(mesh.indices > 0 ? TellMesh(mesh) : Json());
    if (vertices_.Indices().empty()) return;
    const auto& vertices = vertices_.Vertices();
    constexpr std::size_t kStride = sizeof vertices.front();
    TellView(AddBytes(vertices.data(), vertices.size() * kStride),
             {{"byteStride", kStride}, {"target", kForVertices}});
    const auto& indices = vertices_.Indices();
    TellView(AddBytes(indices.data(), indices.size() * sizeof indices.front()),
             {{"target", kForIndices}});
    Tell("materials", {{"pbrMetallicRoughness", {{"metallicFactor", 0}, {"roughnessFactor", 0.8}}},
                       {"doubleSided", true}});
}

// Gives its number.
Json GltfScene::TellMesh(const SharedVertices::Mesh& mesh) {
    const auto vertices = [&](std::size_t number, Json accessor) {
        const std::size_t byte =
            mesh.firstVertex * sizeof(SharedVertices::Vertex) + number * sizeof(float);
        accessor.update({{"bufferView", 0},
                         {"byteOffset", byte},
                         {"componentType", kFloats},
                         {"count", mesh.vertices},
                         {"type", "VEC3"}});
        return Tell("accessors", std::move(accessor));
    };
    const Json attributes = {{"POSITION", vertices(0, {{"min", mesh.least}, {"max", mesh.most}})},
                             {"NORMAL", vertices(3, Json::object())},
                             {"COLOR_0", vertices(6, Json::object())}};
    const std::size_t indices =
        Tell("accessors", {{"bufferView", 1},
                           {"byteOffset", mesh.firstIndex * sizeof(std::uint32_t)},
                           {"componentType", kUnsignedInts},
                           {"count", mesh.indices},
                           {"type", "SCALAR"}});
    const Json primitive = {{"attributes", attributes}, {"indices", indices}, {"material", 0}};
    return Tell("meshes", {{"primitives", Json::array({primitive})}});
}

void GltfScene::TellNodes(const ReadMotion& motion, bool isOneOfSeveral, Loss& loss) {
    const std::size_t first = json.value("nodes", Json::array()).size();
    Json top;
    for (std::size_t node = 0; node < motion.nodes.size(); ++node) {
        const std::size_t number = Tell("nodes", NodeOf(motion, node, loss));
        const std::size_t parent = motion.take->nodes[node].parent;
        if (parent == kNoNode)
            top.push_back(number);
        else
            json["nodes"][first + parent]["children"].push_back(number);
    }
    if (isOneOfSeveral) {
        Json above = {{"name", Utf8(motion.take->name)}};
        if (!top.empty()) above["children"] = std::exchange(top, {});
        top.push_back(Tell("nodes", std::move(above)));
    }
    for (Json& node : top)
        json["scenes"][0]["nodes"].push_back(std::move(node));
    if (motion.Moves()) TellAnimation(motion, first);
}

Json GltfScene::NodeOf(const ReadMotion& motion, std::size_t node, Loss& loss) {
    const TakeNode& told = motion.take->nodes[node];
    Json object = {{"name", Utf8(told.name)}};
    static const NodeMotion kUnsaid;
    for (const auto& [path, type, channel] : kChannels) {
        const Channel& value = motion.nodes[node].*channel;
        if (value.keys.empty() && value.first == (kUnsaid.*channel).first) continue;
        object[path] = std::vector<float>(
            value.first.begin(), value.first.begin() + static_cast<std::ptrdiff_t>(value.width));
    }
    if (Json& mesh = meshes_[nodesTold_++]; !mesh.is_null()) object["mesh"] = std::move(mesh);
    if (!told.lens) return object;
    if (Json camera = CameraOf(told, loss); !camera.is_null())
        object["camera"] = Tell("cameras", std::move(camera));
    return object;
}

void GltfScene::TellAnimation(const ReadMotion& motion, std::size_t firstNode) {
    Json channels, samplers;
    const std::size_t times = TellKeys(motion.times, motion.times.size(), "SCALAR");
    json["accessors"][times]["min"] = Json::array({motion.times.front()});
    json["accessors"][times]["max"] = Json::array({motion.times.back()});
    for (std::size_t node = 0; node < motion.nodes.size(); ++node) {
        for (const auto& [path, type, channel] : kChannels) {
            const std::vector<float>& keys = (motion.nodes[node].*channel).keys;
            if (keys.empty()) continue;
            channels.push_back({{"sampler", samplers.size()},
                                {"target", {{"node", firstNode + node}, {"path", path}}}});
            samplers.push_back(
                {{"input", times}, {"output", TellKeys(keys, motion.times.size(), type)}});
        }
    }
    Tell("animations", {{"name", Utf8(motion.take->name)},
                        {"channels", std::move(channels)},
                        {"samplers", std::move(samplers)}});
}

// Gives the number of their accessor.
std::size_t GltfScene::TellKeys(const std::vector<float>& keys, std::size_t count,
                                const char* type) {
    const std::size_t start = AddBytes(keys.data(), keys.size() * sizeof(float));
    return Tell("accessors", {{"bufferView", motionView_},
                              {"byteOffset", start - motionStart_},
                              {"componentType", kFloats},
                              {"count", count},
                              {"type", type}});
}

// Gives where they begin.
std::size_t GltfScene::AddBytes(const void* data, std::size_t size) {
    bytes.emplace_back(static_cast<const char*>(data), size);
    return std::exchange(byteCount, byteCount + size);
}

// Of all bytes from there on.
void GltfScene::TellView(std::size_t start, Json view) {
    view.update({{"buffer", 0}, {"byteOffset", start}, {"byteLength", byteCount - start}});
    Tell("bufferViews", std::move(view));
}

std::size_t GltfScene::Tell(const char* list, Json entry) {
    json[list].push_back(std::move(entry));
    return json[list].size() - 1;
}

}  // namespace interchange
