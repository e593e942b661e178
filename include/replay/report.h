#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "replay/recording.h"

// What comes of a request to the replay Core, for the program that waits for it around the host. It
// goes through a file of lines `key=value`, in the order and under the keys that Describe gives
// them: the Core writes each field as it passes by, and whoever reads takes it in. A list is a line
// with its length, such as `captures=2`, and the fields of its entries behind `capture.1.`,
// `capture.2.`; the entry of a list of texts is `take.1.missing.1`. What is true is 1 and what is
// false 0; numbers of one field stand behind each other with blanks between. A kind that need not
// be there says first whether it is, as in `look.1.mesh=0`. A text that holds a line end is written
// with blanks in its place.
namespace replay {

// A node as a Core sees it at a moment of scene time, whether the node is its own or not. A kind of
// snapshot that the node does not lend is empty. Spaces and units are those of tvl/snapshot.h.
struct NodeReport {
    using Place = std::array<double, 3>;
    using Matrix = std::array<double, 16>;  // row by row

    struct Transform {
        Matrix world{};  // from object space to Core space
        Matrix local{};
    };
    struct Bounds {  // object space, host units
        Place least{};
        Place most{};
    };
    struct Mesh {
        std::size_t vertices = 0;
        std::size_t faces = 0;
        std::size_t textureVertices = 0;
        std::optional<Bounds> bounds;  // empty if no vertex has a finite place
    };
    struct Lens {
        double fieldOfViewDegrees = 0;
        std::size_t fieldOfViewType = 0;  // 0 across the width, 1 the height, 2 the diagonal
        double targetDistance = 0;        // host units
    };
    struct Shape {
        std::vector<double> curveLengths;  // host units
    };

    std::size_t handle = 0;  // the host's, by which the node was asked for
    bool isThere = false;    // the rest says nothing if the host has no such node

    std::string name;    // the host's
    std::string parent;  // the host's name; empty at the top of the scene
    std::size_t children = 0;
    bool isVisible = false;
    std::optional<Transform> transform;
    bool lendsHelper = false;  // a helper snapshot can only be written to
    std::optional<Mesh> mesh;
    std::optional<Lens> lens;
    std::optional<Shape> shape;
};

struct CaptureReport {
    // What an animator looks at first: metres, Core space.
    struct Figure {
        double heightMetres = 0;      // in the first frame that was recorded, with tips of chains
        double mostHeightMetres = 0;  // in any, as of one who gets up
        NodeReport::Place start{};    // of its first joint in the first frame
        double furthestMetres = 0;    // that this joint gets from there
    };

    // Of what the take held before, behind the last frame that was recorded now.
    struct Kept {
        double fromSeconds = 0;
        double untilSeconds = 0;
    };

    Recording recording;  // now; of one that was not recorded the path alone says something
    std::string error;    // why it was not, in one line that names it; the rest says nothing then

    std::string owner;  // the take that has its nodes
    std::size_t joints = 0;
    Figure figure;
    std::size_t nodes = 0;         // of the take, in the scene
    std::size_t liftedFrames = 0;  // that were lifted onto the ground
    double maxLiftMetres = 0;

    // How far what is read back is from what was meant.
    double maxPositionErrorMetres = 0;
    double maxFieldOfViewErrorDegrees = 0;
    double maxTargetDistanceErrorMetres = 0;

    std::optional<Kept> kept;
};

struct MergeReport {
    std::string path;
    std::size_t nodes = 0;  // that the host brought in
};

struct TakeNodeReport {
    std::string name;      // by which the Core knows it
    std::string hostName;  // as the host shows it
};

struct TakeReport {
    std::string name;
    std::string parent;                 // the take that it belongs to; empty for none
    std::vector<Recording> recordings;  // the oldest first
    std::vector<TakeNodeReport> nodes;  // in the scene
    std::vector<std::string> missing;   // names of nodes that were not found there
};

struct Report {
    std::string error;                    // one line; empty if all went well
    std::vector<std::string> warnings;    // of what was done and is as it should be, a line each
    std::vector<std::string> faults;      // of what was done and is not, a line each
    std::vector<CaptureReport> captures;  // all that were asked for, in that order
    double recordSeconds = 0;             // of the user's time, for all captures
    std::vector<MergeReport> merges;
    std::vector<NodeReport> looks;
    std::vector<TakeReport> takes;  // all that are in the scene when the work is done
};

// `fields` is called with the key and the field, for each in the order of the file; its List with
// the key of the length, that of an entry, and the entries; its Kind for a field that says first
// whether it is there, and its Rest for fields that are there all or none, the first under `key`.

template <class Fields>
void Describe(Fields& fields, NodeReport::Transform& transform) {
    fields("world", transform.world);
    fields("local", transform.local);
}

template <class Fields>
void Describe(Fields& fields, NodeReport::Bounds& bounds) {
    fields("least", bounds.least);
    fields("most", bounds.most);
}

template <class Fields>
void Describe(Fields& fields, NodeReport::Mesh& mesh) {
    fields("vertices", mesh.vertices);
    fields("faces", mesh.faces);
    fields("textureVertices", mesh.textureVertices);
    fields.Rest("least", mesh.bounds);
}

template <class Fields>
void Describe(Fields& fields, NodeReport::Lens& lens) {
    fields("fieldOfViewDegrees", lens.fieldOfViewDegrees);
    fields("fieldOfViewType", lens.fieldOfViewType);
    fields("targetDistance", lens.targetDistance);
}

template <class Fields>
void Describe(Fields& fields, NodeReport::Shape& shape) {
    fields.List("curves", "curve", shape.curveLengths);
}

template <class Fields>
void Describe(Fields& fields, NodeReport& node) {
    fields("handle", node.handle);
    fields("isThere", node.isThere);
    if (!node.isThere) return;
    fields("name", node.name);
    fields("parent", node.parent);
    fields("children", node.children);
    fields("isVisible", node.isVisible);
    fields.Kind("transform", node.transform);
    fields("helper", node.lendsHelper);
    fields.Kind("mesh", node.mesh);
    fields.Kind("lens", node.lens);
    fields.Kind("shape", node.shape);
}

template <class Fields>
void Describe(Fields& fields, Recording& recording) {
    fields("capture", recording.capture);
    fields("metresPerUnit", recording.metresPerUnit);
    fields("frameSeconds", recording.frameSeconds);
    fields("startSeconds", recording.startSeconds);
    fields("firstFrame", recording.firstFrame);
    fields("endFrame", recording.endFrame);
}

template <class Fields>
void Describe(Fields& fields, CaptureReport::Figure& figure) {
    fields("heightMetres", figure.heightMetres);
    fields("mostHeightMetres", figure.mostHeightMetres);
    fields("start", figure.start);
    fields("furthestMetres", figure.furthestMetres);
}

template <class Fields>
void Describe(Fields& fields, CaptureReport::Kept& kept) {
    fields("keptFromSeconds", kept.fromSeconds);
    fields("keptUntilSeconds", kept.untilSeconds);
}

template <class Fields>
void Describe(Fields& fields, CaptureReport& capture) {
    Describe(fields, capture.recording);
    fields("error", capture.error);
    if (!capture.error.empty()) return;
    fields("owner", capture.owner);
    fields("joints", capture.joints);
    Describe(fields, capture.figure);
    fields("nodes", capture.nodes);
    fields("liftedFrames", capture.liftedFrames);
    fields("maxLiftMetres", capture.maxLiftMetres);
    fields("maxPositionErrorMetres", capture.maxPositionErrorMetres);
    fields("maxFieldOfViewErrorDegrees", capture.maxFieldOfViewErrorDegrees);
    fields("maxTargetDistanceErrorMetres", capture.maxTargetDistanceErrorMetres);
    fields.Rest("keptFromSeconds", capture.kept);
}

template <class Fields>
void Describe(Fields& fields, MergeReport& merge) {
    fields("path", merge.path);
    fields("nodes", merge.nodes);
}

template <class Fields>
void Describe(Fields& fields, TakeNodeReport& node) {
    fields("name", node.name);
    fields("hostName", node.hostName);
}

template <class Fields>
void Describe(Fields& fields, TakeReport& take) {
    fields("name", take.name);
    fields("parent", take.parent);
    fields.List("recordings", "recording", take.recordings);
    fields.List("nodes", "node", take.nodes);
    fields.List("missing", "missing", take.missing);
}

template <class Fields>
void Describe(Fields& fields, Report& report) {
    std::string status = report.error.empty() ? "ok" : "error";
    fields("status", status);
    fields("error", report.error);
    fields.List("warnings", "warning", report.warnings);
    fields.List("faults", "fault", report.faults);
    fields.List("captures", "capture", report.captures);
    fields("recordSeconds", report.recordSeconds);
    fields.List("merges", "merge", report.merges);
    fields.List("looks", "look", report.looks);
    fields.List("takes", "take", report.takes);
}

// The entries of a list, each under its number behind `singular`. `prefix` is what `fields` puts
// ahead of every key; it is as before afterwards.
template <class Fields, class Entry>
void DescribeEntries(Fields& fields, std::string& prefix, std::string_view singular,
                     std::vector<Entry>& entries) {
    const std::string outer = prefix;
    const std::string entry = outer + std::string(singular) + '.';
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const std::string number = std::to_string(i + 1);
        prefix = entry;
        if constexpr (std::is_invocable_v<Fields&, std::string_view, Entry&>) {
            fields(number, entries[i]);
        } else {
            prefix.append(number).append(".");
            Describe(fields, entries[i]);
        }
    }
    prefix = outer;
}

}  // namespace replay
