#include <CLI/CLI.hpp>
#include <algorithm>
#include <iostream>
#include <memory>

#include "command/exit_status.h"
#include "command/inspection.h"
#include "command/verb_options.h"
#include "command/verbs.h"
#include "headless/scene_view.h"
#include "replay/request.h"

namespace headless {
namespace {

struct InspectArguments {
    std::string scene;
    std::vector<std::string> nodes;  // the host's names; all nodes if empty
    double seconds = 0;
    Audience audience = Audience::kPerson;
};

std::vector<std::string> HandlesOf(const InspectArguments& arguments) {
    const std::vector<NodeView> all = Nodes();
    for (const std::string& name : arguments.nodes)
        if (std::ranges::find(all, name, &NodeView::name) == all.end())
            throw Failure(arguments.scene + ": no node is called \"" + name + '"');
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
    CoreStage stage(Guests::kPluginAndCore);
    stage.Open(arguments.scene);
    Inspection inspection;
    inspection.scene = arguments.scene;
    inspection.seconds = arguments.seconds;
    inspection.nodes = LookAt(stage, arguments);
    inspection.complaints = stage.Complaints();
    Print(std::cout, inspection, arguments.audience);
}

}  // namespace

void AddInspectVerb(CLI::App& app) {
    const auto arguments = std::make_shared<InspectArguments>();
    CLI::App* verb = app.add_subcommand(
        "inspect",
        "Tell what the Core sees of each node, its own or not. World matrices lead from object "
        "space, in host units, to Core space: metres, Y up. Bounds, lengths and target distances "
        "are in host units.");
    AddFile(*verb, "SCENE", arguments->scene, "Scene file")->required();
    verb->add_option("--node", arguments->nodes,
                     "The host's name of a node; may be said again for more; all if none is named")
        ->expected(1)
        ->take_all();
    AddNumber(*verb, "--time", arguments->seconds, "When, in seconds")->capture_default_str();
    AddAudience(*verb, arguments->audience);
    AddExample(*verb, "inspect build/demo/take.scene --node 01_01_Hips --time 0.5");
    verb->callback([arguments] { RunInspect(*arguments); });
}

}  // namespace headless
