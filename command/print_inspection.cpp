#include <cstdio>
#include <nlohmann/json.hpp>
#include <ostream>
#include <span>
#include <string_view>

#include "command/counted.h"
#include "command/in_table.h"
#include "command/inspection.h"
#include "command/print_json.h"

namespace headless {
namespace {

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

void PrintMatrix(std::ostream& out, std::string_view title, const InspectedNode::Matrix& matrix) {
    out << "  " << title;
    for (std::size_t row = 0; row < 4; ++row)
        out << " (" << Listed(std::span(matrix).subspan(row * 4, 3)) << ')';
    out << '\n';
}

void Print(std::ostream& out, const InspectedNode::Mesh& mesh) {
    out << "  mesh: " << Counted(mesh.vertices, "vertex", "vertices") << ", "
        << Counted(mesh.faces, "face") << ", "
        << Counted(mesh.textureVertices, "texture vertex", "texture vertices");
    if (mesh.bounds)
        out << ", from (" << Listed(mesh.bounds->least) << ") to (" << Listed(mesh.bounds->most)
            << ')';
    out << '\n';
}

void Print(std::ostream& out, const InspectedNode::Lens& lens) {
    constexpr std::array kSides = {"width", "height", "diagonal"};
    out << "  lens: " << Short(lens.fieldOfViewDegrees) << " degrees";
    if (lens.fieldOfViewType < kSides.size()) out << " across the " << kSides[lens.fieldOfViewType];
    out << ", target at " << Short(lens.targetDistance) << '\n';
}

void Print(std::ostream& out, const InspectedNode& node) {
    out << InTable(node.name) << " (" << node.handle << ')';
    if (!node.parent.empty()) out << " below " << InTable(node.parent);
    if (node.children > 0) out << ", " << node.children << " below it";
    if (!node.isVisible) out << ", hidden";
    out << ": lends " << Listed(node.Lent()) << '\n';
    if (node.transform) {
        PrintMatrix(out, "world", node.transform->world);
        PrintMatrix(out, "local", node.transform->local);
    }
    if (node.mesh) Print(out, *node.mesh);
    if (node.lens) Print(out, *node.lens);
    if (node.curveLengths && node.curveLengths->empty()) out << "  no curves\n";
    if (node.curveLengths && !node.curveLengths->empty())
        out << "  " << Counted(node.curveLengths->size(), "curve") << " of length "
            << Listed(*node.curveLengths) << '\n';
}

nlohmann::ordered_json Object(const std::optional<InspectedNode::Transform>& transform) {
    if (!transform) return nullptr;
    return {{"world", transform->world}, {"local", transform->local}};
}

nlohmann::ordered_json Object(const std::optional<InspectedNode::Mesh>& mesh) {
    if (!mesh) return nullptr;
    nlohmann::ordered_json bounds = nullptr;
    if (mesh->bounds) bounds = {{"least", mesh->bounds->least}, {"most", mesh->bounds->most}};
    return {{"vertices", mesh->vertices},
            {"faces", mesh->faces},
            {"textureVertices", mesh->textureVertices},
            {"bounds", bounds}};
}

nlohmann::ordered_json Object(const std::optional<InspectedNode::Lens>& lens) {
    if (!lens) return nullptr;
    return {{"fieldOfViewDegrees", lens->fieldOfViewDegrees},
            {"fieldOfViewType", lens->fieldOfViewType},
            {"targetDistance", lens->targetDistance}};
}

nlohmann::ordered_json Object(const std::optional<std::vector<double>>& curveLengths) {
    if (!curveLengths) return nullptr;
    return {{"curveLengths", *curveLengths}};
}

nlohmann::ordered_json Object(const InspectedNode& node) {
    return {{"handle", node.handle},
            {"name", node.name},
            {"parent", node.parent},
            {"children", node.children},
            {"visible", node.isVisible},
            {"lends", node.Lent()},
            {"transform", Object(node.transform)},
            {"mesh", Object(node.mesh)},
            {"lens", Object(node.lens)},
            {"shape", Object(node.curveLengths)}};
}

}  // namespace

void PrintForPerson(std::ostream& out, const Inspection& inspection) {
    out << InTable(inspection.scene) << " at " << Short(inspection.seconds)
        << " s: " << Counted(inspection.nodes.size(), "node") << '\n';
    for (const std::string& complaint : inspection.complaints)
        out << "Complaint: " << complaint << '\n';
    for (const InspectedNode& node : inspection.nodes)
        Print(out, node);
}

void PrintForProgram(std::ostream& out, const Inspection& inspection) {
    nlohmann::ordered_json object = {{"scene", inspection.scene},
                                     {"seconds", inspection.seconds},
                                     {"complaints", inspection.complaints},
                                     {"nodes", nlohmann::ordered_json::array()}};
    for (const InspectedNode& node : inspection.nodes)
        object["nodes"].push_back(Object(node));
    PrintJson(out, object);
}

}  // namespace headless
