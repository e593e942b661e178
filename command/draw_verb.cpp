#include <CLI/CLI.hpp>
#include <array>
#include <iostream>
#include <memory>
#include <optional>
#include <sstream>

#include "command/drawing.h"
#include "command/exit_status.h"
#include "command/numbers.h"
#include "command/verb_options.h"
#include "command/verbs.h"

namespace headless {
namespace {

// What the tools of headless/primitives.h take.
constexpr Range kSphereSegments{3, 1024};
constexpr Range kGroundDivisions{1, 1000};
constexpr int kUsualSegments = 32;
constexpr int kUsualDivisions = 10;

struct DrawArguments {
    DrawOptions options;
    double side = 0;
    double radius = 0;
    std::optional<int> segments;
    PathSketch path{};
    double bend = 0;
    bool isGuide = false;
    bool isSolid = false;
    GuideLook look;
};

[[noreturn]] void RefuseValue(const std::string& option, const std::string& why) {
    throw CLI::ValidationError(option, why);
}

// `wrong` is said of what is something else than three numbers with commas between.
std::array<float, 3> ReadThree(const std::string& option, const std::string& text,
                               const std::string& wrong) {
    std::array<double, 3> three{};
    const std::errc error = ReadNumbers(text, ',', three);
    if (error != std::errc())
        RefuseValue(option, Quoted(text) + " is " +
                                (error == std::errc::invalid_argument ? wrong : "out of range"));
    const auto [x, y, z] = three;
    return {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)};
}

Point3 ReadPlace(const std::string& option, const std::string& text) {
    const auto [x, y, z] = ReadThree(option, text, "not a place x,y,z");
    return {x, y, z};
}

std::array<float, 3> ReadColour(const std::string& option, const std::string& text) {
    const std::array<float, 3> colour = ReadThree(option, text, "not a colour R,G,B");
    for (const float channel : colour)
        if (channel < 0 || channel > 1)
            RefuseValue(option, '"' + text + "\" is not a colour of three numbers from 0 to 1");
    return colour;
}

std::vector<Point3> ReadPlaces(const std::string& option, const std::string& text) {
    std::vector<Point3> places;
    std::istringstream arguments(text);
    for (std::string word; arguments >> word;)
        places.push_back(ReadPlace(option, word));
    if (places.size() < 2) RefuseValue(option, "a path leads through two places or more");
    return places;
}

int Segments(const DrawArguments& arguments, Range range, int usual) {
    const int segments = arguments.segments.value_or(usual);
    CheckRange("--segments", segments, range);
    return segments;
}

void Choose(DrawArguments& arguments) {
    const bool isPath = !arguments.path.places.empty();
    if ((arguments.side > 0) + (arguments.radius > 0) + isPath != 1)
        Refuse("exactly one of --ground, --sphere and --path is to be said");
    if (arguments.segments && isPath) RefuseValue("--segments", "a path has none");
    if (arguments.side > 0)
        arguments.options.sketch =
            GroundSketch{static_cast<float>(arguments.side),
                         Segments(arguments, kGroundDivisions, kUsualDivisions)};
    else if (arguments.radius > 0)
        arguments.options.sketch =
            SphereSketch{static_cast<float>(arguments.radius),
                         Segments(arguments, kSphereSegments, kUsualSegments)};
    else
        arguments.options.sketch = arguments.path;
    arguments.options.bendDegreesPerSecond = static_cast<float>(arguments.bend);
    arguments.look.isWireframe = !arguments.isSolid;
    if (arguments.isGuide) arguments.options.guide = arguments.look;
}

void RunDraw(DrawArguments& arguments) {
    Choose(arguments);
    ExpectFile(arguments.options.target);
    const DrawResult result = Draw(arguments.options);
    PrintEach(std::cout, kComplaint, result.complaints);
    std::cout << "Drew " << InTable(result.name) << " (" << result.handle
              << "); in the scene: " << Counted(result.nodes, "node") << '\n';
    TellSaved(std::cout);
}

void AddObjects(CLI::App& verb, const std::shared_ptr<DrawArguments>& arguments) {
    AddSize(verb, "--ground", arguments->side,
            "A flat square that looks up, with sides of this length");
    AddSize(verb, "--sphere", arguments->radius, "A sphere of this radius");
    AddWholeNumber(verb, "--segments", arguments->segments,
                   "Faces around the sphere's equator, " + Told(kSphereSegments) + " (" +
                       std::to_string(kUsualSegments) +
                       " if not said), or along a side of the ground, " + Told(kGroundDivisions) +
                       " (" + std::to_string(kUsualDivisions) + " if not said)");
    CLI::Option* const path =
        AddRead(verb, "--path", "PLACES", "A curve through places, in quotes: \"x,y,z x,y,z ...\"",
                [arguments](auto& text) { arguments->path.places = ReadPlaces("--path", text); });
    AddSwitch(verb, "--closed", arguments->path.isClosed, "The curve leads back to its start")
        ->needs(path);
    AddSwitch(verb, "--smooth", arguments->path.isSmooth, "The curve has no corners")->needs(path);
}

void AddGuide(CLI::App& verb, const std::shared_ptr<DrawArguments>& arguments, CLI::Option* bend) {
    CLI::Option* const guide =
        AddSwitch(verb, "--guide", arguments->isGuide,
                  "Put it in as a guide object of the plug-in, which shows in viewports alone")
            ->excludes(bend);
    AddRead(verb, "--color", "R,G,B", "Colour of the guide object, three numbers from 0 to 1",
            [arguments](auto& text) { arguments->look.colour = ReadColour("--color", text); })
        ->default_str("1,0,0")
        ->needs(guide);
    AddSwitch(verb, "--solid", arguments->isSolid, "Faces of the guide object instead of edges")
        ->needs(guide);
}

}  // namespace

void AddDrawVerb(CLI::App& app) {
    const auto arguments = std::make_shared<DrawArguments>();
    DrawOptions& options = arguments->options;
    CLI::App* verb = AddVerb(
        app, kMaking, "draw",
        "Draw an object into a scene with the host's own tools. It is one of --ground, --sphere "
        "and --path, in host units with Z up. What the scene holds of a Core is kept.");
    AddFile(*verb, "SCENE", options.scene, "Scene file to draw into; a new scene if not named");
    AddOutput(*verb, "", options.target, "Where to save the scene")->required();
    AddObjects(*verb, arguments);
    CLI::Option* const bend =
        AddNumber(*verb, "--bend", arguments->bend,
                  "Bend it over its x axis by so many degrees in each second");
    AddGuide(*verb, arguments, bend);
    AddRead(*verb, "--at", "X,Y,Z", "Where to put it", [arguments](auto& text) {
        arguments->options.at = ReadPlace("--at", text);
    })->default_str("0,0,0");
    AddName(*verb, "--name", options.name, "Its name; the host chooses if not said");
    AddExample(*verb, "draw --sphere 20 --bend 45 --name Ball -o ball.scene");
    verb->callback([arguments] { RunDraw(*arguments); });
}

}  // namespace headless
