#include "command/info.h"

#include <exception>
#include <iterator>

#include "command/exit_status.h"

namespace headless {
namespace {

void OpenInHost(const InfoOptions& options, InfoResult& result) {
    CoreStage stage(options.guests);
    const FileOutcome outcome = stage.Host().OpenScene(options.scene);
    if (!outcome.error.empty()) throw Failure(outcome.error);
    for (const ClassInFile& type : result.file.classes)
        if (!IsClassLoaded(type)) result.keptClasses.push_back(type);
    result.utilityChunks = stage.Host().UtilityChunks();
    stage.ShutDown();
}

}  // namespace

InfoResult Info(const InfoOptions& options) {
    InfoResult result;
    result.scene = options.scene;
    result.file = ViewSceneFile(options.scene);
    if (options.guests == Guests::kNobody) {
        result.whyNotOpened = "the file alone was looked at";
        return result;
    }
    // The file can be told of also where there is nobody to open it.
    try {
        OpenInHost(options, result);
    } catch (const Failure& failure) {
        result.whyNotOpened = failure.what();
    }
    return result;
}

}  // namespace headless
