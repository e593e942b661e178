#include "command/print_result.h"

#include <iomanip>
#include <nlohmann/json.hpp>
#include <ostream>

namespace headless {
namespace {

const char* SameOrNot(bool identical) {
    return identical ? "identical" : "NOT identical";
}

}  // namespace

void PrintForPerson(std::ostream& out, const RecordResult& result) {
    const double seconds = static_cast<double>(result.frames) * result.frameSeconds;
    out << std::fixed << std::setprecision(1);
    out << "Recorded " << result.capture << ": " << result.joints << " joints, " << result.frames
        << " frames (" << seconds << " s of motion) in " << std::setprecision(2)
        << result.recordSeconds << " s\n";
    out << "In the scene: " << result.nodes << " nodes with " << result.keys << " keys, "
        << std::setprecision(1) << result.bytesPerKey << " bytes each\n";
    out << "Furthest from the capture: " << std::setprecision(4)
        << result.maxPositionErrorMetres * 1000 << " mm\n";
    out << "Undo (" << result.undoSteps << (result.undoSteps == 1 ? " step" : " steps")
        << "): scene " << SameOrNot(result.undoIdentical) << " to before; redo: scene "
        << SameOrNot(result.redoIdentical) << " to the recording\n";
    out << "Left over after shutdown: " << result.hostObjectsAlive << " host objects\n";
}

void PrintForProgram(std::ostream& out, const RecordResult& result) {
    const nlohmann::ordered_json object = {
        {"capture", result.capture},
        {"joints", result.joints},
        {"frames", result.frames},
        {"frameSeconds", result.frameSeconds},
        {"nodes", result.nodes},
        {"keys", result.keys},
        {"undoSteps", result.undoSteps},
        {"undoIdentical", result.undoIdentical},
        {"redoIdentical", result.redoIdentical},
        {"maxPositionErrorMetres", result.maxPositionErrorMetres},
        {"bytesPerKey", result.bytesPerKey},
        {"hostObjectsAlive", result.hostObjectsAlive},
        {"recordSeconds", result.recordSeconds},
    };
    out << object.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) << '\n';
}

}  // namespace headless
