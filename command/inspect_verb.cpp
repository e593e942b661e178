#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cstdio>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <span>
#include <string_view>

#include "command/exit_status.h"
#include "command/verb_options.h"
#include "command/verbs.h"
#include "command/wrong_words.h"
#include "headless/scene_view.h"
#include "replay/request.h"

namespace headless {
namespace {

// What the Core sees of nodes of a scene, in the order of the scene.
struct Inspection {
    std::string scene;
    double seconds = 0;
    std::vector<std::string> complaints;  // about the scene file
    std::vector<replay::NodeReport> nodes;
};

std::string Short(double number) {
    std::array<char, 32> text;
    std::snprintf(text.data(), text.size(), "%.6g", number);
    return text.data();
}

std::string Listed(std::span<const double> numbers) {
    std::string text;
    for (const double number : numbers)
        (text += text.empty() ? "" : ", ") += Short(number);
    return text;
}

std::string Listed(std::span<const std::string> words) {
    std::string text;
    for (const std::string& word : words)
        (text += text.empty() ? "" : ", ") += word;
    return text.empty() ? "nothing" : text;
}

// The names of the kinds that the node lends.
std::vector<std::string> Lent(const replay::NodeReport& node) {
    std::vector<std::string> kinds;
    if (node.transform) kinds.push_back("transform");
    if (node.lendsHelper) kinds.push_back("helper");
    if (node.mesh) kinds.push_back("mesh");
    if (node.lens) kinds.push_back("lens");
    if (node.shape) kinds.push_back("shape");
    return kinds;
}

void PrintMatrix(std::ostream& out, std::string_view title,
                 const replay::NodeReport::Matrix& matrix) {
    out << "  " << title;
    for (std::size_t row = 0; row < 4; ++row)
        out << " (" << Listed(std::span(matrix).subspan(row * 4, 3)) << ')';
    out << '\n';
}

void Print(std::ostream& out, const replay::NodeReport::Mesh& mesh) {
    out << "  mesh: " << Counted(mesh.vertices, "vertex", "vertices") << ", "
        << Counted(mesh.faces, "face") << ", "
        << Counted(mesh.textureVertices, "texture vertex", "texture vertices");
    if (mesh.bounds)
        out << ", from (" << Listed(mesh.bounds->least) << ") to (" << Listed(mesh.bounds->most)
            << ')';
    out << '\n';
}

void Print(std::ostream& out, const replay::NodeReport::Lens& lens) {
    constexpr std::array kSides = {"width", "height", "diagonal"};
    out << "  lens: " << Short(lens.fieldOfViewDegrees) << " degrees";
    if (lens.fieldOfViewType < kSides.size()) out << " across the " << kSides[lens.fieldOfViewType];
    out << ", target at " << Short(lens.targetDistance) << '\n';
}

void Print(std::ostream& out, const replay::NodeReport& node) {
    out << InTable(node.name) << " (" << node.handle << ')';
    if (!node.parent.empty()) out << " below " << InTable(node.parent);
    if (node.children > 0) out << ", " << node.children << " below it";
    if (!node.isVisible) out << ", hidden";
    out << ": lends " << Listed(Lent(node)) << '\n';
    if (node.transform) {
        PrintMatrix(out, "world", node.transform->world);
        PrintMatrix(out, "local", node.transform->local);
    }
    if (node.mesh) Print(out, *node.mesh);
    if (node.lens) Print(out, *node.lens);
    if (!node.shape) return;
    const std::vector<double>& lengths = node.shape->curveLengths;
    if (lengths.empty()) out << "  no curves\n";
    if (!lengths.empty())
        out << "  " << Counted(lengths.size(), "curve") << " of length " << Listed(lengths) << '\n';
}

nlohmann::ordered_json JsonOf(const std::optional<replay::NodeReport::Transform>& transform) {
    if (!transform) return nullptr;
    return {{"world", transform->world}, {"local", transform->local}};
}

nlohmann::ordered_json JsonOf(const std::optional<replay::NodeReport::Mesh>& mesh) {
    if (!mesh) return nullptr;
    nlohmann::ordered_json bounds = nullptr;
    if (mesh->bounds) bounds = {{"least", mesh->bounds->least}, {"most", mesh->bounds->most}};
    return {{"vertices", mesh->vertices},
            {"faces", mesh->faces},
            {"textureVertices", mesh->textureVertices},
            {"bounds", bounds}};
}

nlohmann::ordered_json JsonOf(const std::optional<replay::NodeReport::Lens>& lens) {
    if (!lens) return nullptr;
    return {{"fieldOfViewDegrees", lens->fieldOfViewDegrees},
            {"fieldOfViewType", lens->fieldOfViewType},
            {"targetDistance", lens->targetDistance}};
}

nlohmann::ordered_json JsonOf(const std::optional<replay::NodeReport::Shape>& shape) {
    if (!shape) return nullptr;
    return {{"curveLengths", shape->curveLengths}};
}

nlohmann::ordered_json JsonOf(const replay::NodeReport& node) {
    return {{"handle", node.handle},
            {"name", node.name},
            {"parent", node.parent},
            {"children", node.children},
            {"visible", node.isVisible},
            {"lends", Lent(node)},
            {"transform", JsonOf(node.transform)},
            {"mesh", JsonOf(node.mesh)},
            {"lens", JsonOf(node.lens)},
            {"shape", JsonOf(node.shape)}};
}

void PrintForPerson(std::ostream& out, const Inspection& inspection) {
    out << InTable(inspection.scene) << " at " << Short(inspection.seconds)
        << " s: " << Counted(inspection.nodes.size(), "node") << '\n';
    PrintEach(out, kComplaint, inspection.complaints);
    for (const replay::NodeReport& node : inspection.nodes)
        Print(out, node);
}

void PrintForProgram(std::ostream& out, const Inspection& inspection) {
    nlohmann::ordered_json object = {{"scene", inspection.scene},
                                     {"seconds", inspection.seconds},
                                     {"complaints", inspection.complaints},
                                     {"nodes", nlohmann::ordered_json::array()}};
    for (const replay::NodeReport& node : inspection.nodes)
        object["nodes"].push_back(JsonOf(node));
    PrintJson(out, object);
}

struct InspectArguments {
    std::string scene;
    std::vector<std::string> nodes;  // the host's names; all nodes if empty
    double seconds = 0;
    GuestChoice guests;
    Audience audience = Audience::kPerson;
};

std::vector<std::string> HandlesOf(const InspectArguments& arguments) {
    const std::vector<NodeView> all = Nodes();
    for (const std::string& name : arguments.nodes)
        if (std::ranges::find(all, name, &NodeView::name) == all.end())
            throw Failure(arguments.scene + ": " + NoNode(name));
    std::vector<std::string> handles;
    for (const NodeView& node : all)
        if (arguments.nodes.empty() ||
            std::ranges::find(arguments.nodes, node.name) != arguments.nodes.end())
            handles.push_back(std::to_string(node.handle));
    return handles;
}

std::vector<replay::NodeReport> LookAt(CoreStage& stage, const InspectArguments& arguments) {
    const std::vector<std::string> handles = HandlesOf(arguments);
    std::vector<replay::NodeReport> nodes =
        stage
            .AskCore({{replay::variable::kInspect, Lines(handles)},
                      {replay::variable::kInspectTime, Plain(arguments.seconds)}})
            .looks;
    if (nodes.size() != handles.size())
        throw Failure("the Core looked at " + std::to_string(nodes.size()) + " of " +
                      std::to_string(handles.size()) + " nodes");
    for (const replay::NodeReport& node : nodes)
        if (!node.isThere)
            throw Failure("the Core cannot find node " + std::to_string(node.handle));
    return nodes;
}

void RunInspect(const InspectArguments& arguments) {
    CoreStage stage(arguments.guests);
    stage.NeedReplayCore();
    stage.Open(arguments.scene);
    Inspection inspection;
    inspection.scene = arguments.scene;
    inspection.seconds = arguments.seconds;
    inspection.nodes = LookAt(stage, arguments);
    inspection.complaints = stage.TakeNewsInOne().complaints;
    Print(std::cout, inspection, arguments.audience);
}

}  // namespace

void AddInspectVerb(CLI::App& app) {
    const auto arguments = std::make_shared<InspectArguments>();
    CLI::App* verb = AddVerb(
        app, kLooking, "inspect",
        "Tell what the Core sees of each node, its own or not. World matrices lead from object "
        "space, in host units, to Core space: metres, Y up. Bounds, lengths and target distances "
        "are in host units.");
    AddFile(*verb, "SCENE", arguments->scene, "Scene file")->required();
    AddNodes(*verb, arguments->nodes);
    AddNumber(*verb, "--time", arguments->seconds, "When, in seconds")->capture_default_str();
    AddCore(*verb, arguments->guests);
    AddAudience(*verb, arguments->audience);
    AddExample(*verb, "inspect walk.scene --node walk_Hips --time 0.5");
    verb->callback([arguments] { RunInspect(*arguments); });
}

}  // namespace headless
