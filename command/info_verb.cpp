#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cstdio>
#include <iomanip>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>

#include "command/exit_status.h"
#include "command/long_work.h"
#include "command/verb_options.h"
#include "command/verbs.h"
#include "headless/scene_file_view.h"
#include "recorder/stream/notes.h"

namespace headless {
namespace {

struct InfoResult {
    std::string scene;
    SceneFileView file;

    // What became of the file in a host that opened it; empty if it was to be alone, or could not.
    std::string whyNotOpened;
    std::vector<ClassInFile> keptClasses;          // not loaded, so kept as they were stored
    std::vector<UtilityChunksView> utilityChunks;  // who has taken its own
};

double Seconds(const SceneFileView& file, TimeValue t) {
    return static_cast<double>(t) / (static_cast<double>(file.frameRate) * file.ticksPerFrame);
}

std::string Named(const ClassInFile& type) {
    return type.name.empty() ? "-" : type.name;
}

std::string Ids(const ClassInFile& type) {
    std::array<char, 40> text;
    std::snprintf(text.data(), text.size(), "%X, %X:%X", type.superClass, type.id.partA,
                  type.id.partB);
    return text.data();
}

std::string KeyRange(const SceneFileView& file, const KeyView& keys) {
    if (keys.count == 0) return "-";
    std::array<char, 64> text;
    std::snprintf(text.data(), text.size(), "%.3f to %.3f", Seconds(file, keys.first),
                  Seconds(file, keys.last));
    return text.data();
}

std::string Marks(const NodeInFile& node) {
    std::string marks = node.hidden ? "hidden" : "";
    if (node.selected) marks += marks.empty() ? "selected" : ", selected";
    return marks;
}

using Row = std::vector<std::string>;

std::vector<Row> Rows(const SceneFileView& file) {
    std::vector<Row> rows{
        {"handle", "parent", "name", "object", "controller", "keys", "seconds", "tag bytes", ""}};
    for (const NodeInFile& node : file.nodes)
        rows.push_back({std::to_string(node.handle), std::to_string(node.parent),
                        InTable(node.name), InTable(Named(node.object)),
                        InTable(Named(node.controller)), std::to_string(node.keys.count),
                        KeyRange(file, node.keys), std::to_string(node.tagBytes), Marks(node)});
    return rows;
}

void PrintHost(std::ostream& out, const InfoResult& result) {
    if (!result.whyNotOpened.empty()) {
        out << "Not opened: " << result.whyNotOpened << '\n';
        return;
    }
    for (const ClassInFile& type : result.keptClasses)
        out << "Kept as stored: " << InTable(Named(type)) << " (" << Ids(type) << ")\n";
    if (result.keptClasses.empty()) out << "All classes are loaded\n";
    for (const UtilityChunksView& chunks : result.utilityChunks)
        out << "Chunks of " << InTable(chunks.className) << ": "
            << (chunks.isTaken ? "taken" : "kept as stored") << '\n';
}

nlohmann::ordered_json JsonOf(const ClassInFile& type) {
    if (type.name.empty() && type.superClass == 0) return nullptr;
    return {{"name", type.name}, {"id", Ids(type)}};
}

nlohmann::ordered_json JsonOf(const SceneFileView& file, const NodeInFile& node) {
    nlohmann::ordered_json range = nullptr;
    if (node.keys.count > 0)
        range = {Seconds(file, node.keys.first), Seconds(file, node.keys.last)};
    return {{"handle", node.handle},
            {"parent", node.parent},
            {"name", node.name},
            {"objectClass", JsonOf(node.object)},
            {"controllerClass", JsonOf(node.controller)},
            {"keys", node.keys.count},
            {"rangeSeconds", range},
            {"tagBytes", node.tagBytes},
            {"hidden", node.hidden},
            {"selected", node.selected}};
}

nlohmann::ordered_json JsonOf(const UtilityInFile& utility) {
    auto chunks = nlohmann::ordered_json::array();
    for (const ChunkInFile& chunk : utility.chunks)
        chunks.push_back({{"id", chunk.id}, {"bytes", chunk.bytes}});
    return {{"class", JsonOf(utility.type)}, {"chunks", chunks}};
}

nlohmann::ordered_json JsonOfHost(const InfoResult& result) {
    if (!result.whyNotOpened.empty()) return {{"whyNotOpened", result.whyNotOpened}};
    auto kept = nlohmann::ordered_json::array();
    for (const ClassInFile& type : result.keptClasses)
        kept.push_back(JsonOf(type));
    auto chunks = nlohmann::ordered_json::array();
    for (const UtilityChunksView& view : result.utilityChunks)
        chunks.push_back({{"utility", view.className}, {"taken", view.isTaken}});
    return {{"keptClasses", kept}, {"utilityChunks", chunks}};
}

void PrintForPerson(std::ostream& out, const InfoResult& result) {
    const SceneFileView& file = result.file;
    out << InTable(result.scene) << ": " << Counted(file.nodes.size(), "node") << ", "
        << file.frameRate << " frames of " << file.ticksPerFrame << " ticks a second, range "
        << std::fixed << std::setprecision(3) << Seconds(file, file.range.Start()) << " to "
        << Seconds(file, file.range.End()) << " s, now at " << Seconds(file, file.time) << " s\n";
    PrintTable(out, Rows(file));
    for (const UtilityInFile& utility : file.utilities)
        for (const ChunkInFile& chunk : utility.chunks)
            out << "Utility " << InTable(Named(utility.type)) << ": chunk " << chunk.id << ", "
                << Counted(chunk.bytes, "byte") << '\n';
    PrintHost(out, result);
}

void PrintForProgram(std::ostream& out, const InfoResult& result) {
    const SceneFileView& file = result.file;
    nlohmann::ordered_json object = {
        {"scene", result.scene},
        {"unitType", file.unitType},
        {"unitScale", file.unitScale},
        {"frameRate", file.frameRate},
        {"ticksPerFrame", file.ticksPerFrame},
        {"timeSeconds", Seconds(file, file.time)},
        {"rangeSeconds", {Seconds(file, file.range.Start()), Seconds(file, file.range.End())}}};
    object["nodes"] = nlohmann::ordered_json::array();
    for (const NodeInFile& node : file.nodes)
        object["nodes"].push_back(JsonOf(file, node));
    object["utilities"] = nlohmann::ordered_json::array();
    for (const UtilityInFile& utility : file.utilities)
        object["utilities"].push_back(JsonOf(utility));
    object["host"] = JsonOfHost(result);
    PrintJson(out, object);
}

struct InfoArguments {
    std::string scene;
    GuestChoice guests;
    Audience audience = Audience::kPerson;
};

void OpenInHost(const GuestChoice& guests, InfoResult& result) {
    CoreStage stage(guests);
    const FileOutcome outcome = stage.Host().OpenScene(result.scene);
    if (!outcome.error.empty()) EndIfStopped(outcome.error);
    if (!outcome.error.empty()) throw Failure(outcome.error);
    stage.NoteScene(recorder::note::kOpened, result.scene);
    for (const ClassInFile& type : result.file.classes)
        if (!IsClassLoaded(type)) result.keptClasses.push_back(type);
    result.utilityChunks = stage.Host().UtilityChunks();
    stage.ShutDown();
}

// Looks at the file alone, and then opens it with the guests that are wanted. The file can be told
// of also where there is nobody to open it.
InfoResult Info(const std::string& scene, const GuestChoice& guests) {
    const ToldSceneFiles told;
    InfoResult result;
    result.scene = scene;
    result.file = OrRefuse([&] { return ViewSceneFile(scene); });
    if (guests.guests == Guests::kNobody) {
        result.whyNotOpened = "the file alone was looked at";
        return result;
    }
    try {
        OpenInHost(guests, result);
    } catch (const Failure& failure) {
        if (failure.Status() == kStopped) throw;
        result.whyNotOpened = failure.what();
    }
    return result;
}

}  // namespace

void AddInfoVerb(CLI::App& app) {
    const auto arguments = std::make_shared<InfoArguments>();
    CLI::App* verb = AddVerb(
        app, kLooking, "info",
        "Tell what a scene file holds. It is told also where neither plug-in nor Core can be had.");
    AddFile(*verb, "SCENE", arguments->scene, "Scene file")->required();
    AddGuestOptions(*verb, arguments->guests);
    AddAudience(*verb, arguments->audience);
    AddExample(*verb, "info walk.scene");
    verb->callback([arguments] {
        Print(std::cout, Info(arguments->scene, arguments->guests), arguments->audience);
    });
}

}  // namespace headless
