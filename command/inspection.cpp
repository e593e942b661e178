#include "command/inspection.h"

#include <algorithm>
#include <cstdint>

#include "command/core_environment.h"
#include "command/core_stage.h"
#include "command/exit_status.h"
#include "command/plain_number.h"
#include "headless/scene_view.h"

namespace headless {
namespace {

std::vector<std::string> HandlesOf(const InspectOptions& options) {
    const std::vector<NodeView> all = Nodes();
    for (const std::string& name : options.nodes)
        if (std::ranges::find(all, name, &NodeView::name) == all.end())
            throw Failure(options.scene + ": no node is called \"" + name + '"');
    std::vector<std::string> handles;
    for (const NodeView& node : all)
        if (options.nodes.empty() ||
            std::ranges::find(options.nodes, node.name) != options.nodes.end())
            handles.push_back(std::to_string(node.handle));
    return handles;
}

// One entry of the Core's report.
class Entry {
  public:
    Entry(const CoreReport& report, std::string prefix)
        : report_(report), prefix_(std::move(prefix)) {}

    InspectedNode Node() const {
        InspectedNode node;
        node.handle = Count("handle");
        if (!Truth("isThere"))
            throw Failure("the Core cannot find node " + std::to_string(node.handle));
        node.name = Text("name");
        node.parent = Text("parent");
        node.children = Count("children");
        node.isVisible = Truth("isVisible");
        if (Truth("transform")) node.transform = {Numbers<16>("world"), Numbers<16>("local")};
        node.lendsHelper = Truth("helper");
        if (Truth("mesh")) node.mesh = Mesh();
        if (Truth("lens"))
            node.lens = {Number("fieldOfViewDegrees"), Count("fieldOfViewType"),
                         Number("targetDistance")};
        if (Truth("shape")) node.curveLengths = CurveLengths();
        return node;
    }

  private:
    std::string Text(const char* key) const { return report_.Text(prefix_ + key); }
    std::size_t Count(const char* key) const { return report_.Count(prefix_ + key); }
    double Number(const char* key) const { return report_.Number(prefix_ + key); }
    bool Truth(const char* key) const { return Count(key) == 1; }

    template <std::size_t count>
    std::array<double, count> Numbers(const char* key) const {
        std::array<double, count> numbers{};
        std::ranges::copy_n(report_.Numbers(prefix_ + key, count).begin(), count, numbers.begin());
        return numbers;
    }

    InspectedNode::Mesh Mesh() const {
        InspectedNode::Mesh mesh{.vertices = Count("vertices"),
                                 .faces = Count("faces"),
                                 .textureVertices = Count("textureVertices"),
                                 .bounds = {}};
        if (!Text("least").empty()) mesh.bounds = {Numbers<3>("least"), Numbers<3>("most")};
        return mesh;
    }

    std::vector<double> CurveLengths() const {
        std::vector<double> lengths(report_.Entries(prefix_ + "curves"));
        for (std::size_t i = 0; i < lengths.size(); ++i)
            lengths[i] = report_.Number(prefix_ + "curve." + std::to_string(i + 1));
        return lengths;
    }

    const CoreReport& report_;
    std::string prefix_;
};

}  // namespace

std::vector<std::string> InspectedNode::Lent() const {
    std::vector<std::string> kinds;
    if (transform) kinds.push_back("transform");
    if (lendsHelper) kinds.push_back("helper");
    if (mesh) kinds.push_back("mesh");
    if (lens) kinds.push_back("lens");
    if (curveLengths) kinds.push_back("shape");
    return kinds;
}

Inspection Inspect(const InspectOptions& options) {
    CoreStage stage(Guests::kPluginAndCore);
    stage.Open(options.scene);
    const std::vector<std::string> handles = HandlesOf(options);
    const CoreReport report = stage.AskCore(
        {{kInspectVariable, Lines(handles)}, {kInspectTimeVariable, Plain(options.seconds)}});
    if (report.Entries("looks") != handles.size())
        throw Failure("the Core looked at " + std::to_string(report.Entries("looks")) + " of " +
                      std::to_string(handles.size()) + " nodes");
    Inspection inspection;
    inspection.scene = options.scene;
    inspection.seconds = options.seconds;
    inspection.complaints = stage.Complaints();
    for (std::size_t i = 1; i <= handles.size(); ++i)
        inspection.nodes.push_back(Entry(report, "look." + std::to_string(i) + '.').Node());
    return inspection;
}

}  // namespace headless
