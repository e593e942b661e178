#include "adaptor/max_adaptor_interface.h"

#include <optional>

#include "adaptor/panel.h"
#include "adaptor/utility_manager.h"
#include "controllers/conversion.h"
#include "core_link/core_answer.h"
#include "core_link/core_link.h"
#include "core_link/trace_file.h"
#include "host/interface.h"
#include "measures/host_clock.h"
#include "nodes/node_creation.h"
#include "scene_state/node_tags.h"
#include "tvl/ids.h"

namespace {

constexpr const char* kUndoScript = "max undo";

std::uint64_t lostBeforeGroup = 0;  // of the answers

// Frames in a second, where the host does not tell: a Core may divide by it.
constexpr double kUsualFrameRate = 30;

// Ends a group. The outermost one tells what was lost since it began; what its hold calls at its
// end may open groups of its own.
std::int32_t EndGroupBy(std::int32_t (*end)()) {
    const bool isOutermost = OpenUndoGroups().undoGroups.size() == 1;
    const std::uint64_t before = lostBeforeGroup;
    const std::int32_t status = end();
    return status == 0 && isOutermost && lostAnswers != before ? TVL::Report(kThrownOut) : status;
}

constexpr const char* kNotImplementedCode = "NOTIMPLEMENTED";
constexpr const char* kNotImplementedText = "The function is not yet implemented";

MaxAdaptorInterface& Adaptor() {
    return *MaxAdaptorInterface::GetInstance();
}

// Stands around what can bring nodes into the scene, also where it ends by an exception.
struct Arriving {
    Arriving() = default;
    ~Arriving() { ++AdaptorNodes().arrivals; }
    Arriving(const Arriving&) = delete;
    Arriving& operator=(const Arriving&) = delete;
};

}  // namespace

RecordingState& RecordingInProgress() {
    return Adaptor().recording;
}
UndoGroups& OpenUndoGroups() {
    return Adaptor().undo;
}
NodeList& AdaptorNodes() {
    return Adaptor().nodeList;
}
DeletionState& DeletionInProgress() {
    return Adaptor().deletion;
}
MeshCache& ConvertedMeshes() {
    return Adaptor().meshCache;
}
TaggedNodeLists& NodesWithTags() {
    return Adaptor().taggedNodes;
}
StateRecord& RecordOfState() {
    return Adaptor().stateRecord;
}

MaxAdaptorInterface::MaxAdaptorInterface() : MessageNode("MaxAdaptorInterface") {
    TVL::ErrorCode notImplemented(kNotImplementedCode, kNotImplementedText,
                                  TVL::ErrorCode::kCritical);
    TVL::ErrorCode::GetInstance()->Register(&notImplemented);
}

// Identity ---------------------------------------------------------------------------------------

std::string MaxAdaptorInterface::GetName() {
    return AnswerCore("GetName", [] { return std::string("3ds max 9 Adaptor"); });
}

TVL::WindowHandle MaxAdaptorInterface::GetPlatformWindow() {
    return AnswerCore("GetPlatformWindow", [&] { return GetCOREInterface()->GetMAXHWnd(); });
}

XMLNode MaxAdaptorInterface::GetOptionsPanel() {
    return AnswerCore("GetOptionsPanel", [&] { return OptionsPanel(); });
}

std::int32_t MaxAdaptorInterface::SetLog(TVL::Log* log) {
    return AnswerStatus("SetLog", [&] {
        const TraceHandover handover(log);
        return AdaptorInterface::SetLog(log);
    });
}

std::int32_t MaxAdaptorInterface::ClearLog() {
    return AnswerStatus("ClearLog", [&] {
        const TraceHandover handover;
        return AdaptorInterface::ClearLog();
    });
}

// Nodes ------------------------------------------------------------------------------------------

TVL::CNode* MaxAdaptorInterface::CreateLensNode(TVL::CoreElement* owner, std::string nodeName,
                                                TVL::CNode* parent, TVL::NodeListener* listener) {
    return AnswerCore("CreateLensNode",
                      [&] { return ::CreateLensNode(owner, nodeName, parent, listener); });
}

TVL::CNode* MaxAdaptorInterface::CreateHelperNode(TVL::CoreElement* owner, std::string nodeName,
                                                  TVL::CNode* parent, TVL::CMesh mesh,
                                                  TVL::NodeListener* listener) {
    return AnswerCore("CreateHelperNode",
                      [&] { return ::CreateHelperNode(owner, nodeName, parent, mesh, listener); });
}

TVL::CNode* MaxAdaptorInterface::createMesh(void*, std::string) {
    return AnswerCore("createMesh", [&]() -> TVL::CNode* {
        const TVL::Log scope("(NOT IMPLEMENTED)createMesh " + GetName(), TVL::Log::kError);
        return nullptr;
    });
}

TVL::CNode* MaxAdaptorInterface::FindNode(TVL::CoreElement* owner, std::string nodeName) {
    return AnswerCore("FindNode", [&] { return ::FindNode(owner, nodeName); });
}

std::vector<TVL::CNode*> MaxAdaptorInterface::GetNodes(TVL::CoreElement* owner) {
    return AnswerCore("GetNodes", [&] { return ::GetNodes(owner); });
}

std::vector<TVL::CNode*> MaxAdaptorInterface::ClaimNodes(std::string pluginName, XMLNode nodeInfo) {
    return AnswerCore("ClaimNodes", [&] { return ::ClaimNodes(pluginName, nodeInfo); });
}

std::vector<TVL::CNode*> MaxAdaptorInterface::MergeModels(std::string path) {
    return AnswerCore("MergeModels", [&] {
        const Arriving arriving;
        return ::MergeModels(path);
    });
}

// Undo -------------------------------------------------------------------------------------------

std::int32_t MaxAdaptorInterface::BeginUndoGroup(std::string groupName) {
    return AnswerStatus("BeginUndoGroup", [&] {
        if (OpenUndoGroups().undoGroups.empty()) lostBeforeGroup = lostAnswers;
        return ::BeginUndoGroup(std::move(groupName));
    });
}

std::int32_t MaxAdaptorInterface::AddUndoChunk(TVL::CUndo* chunk) {
    return AnswerStatus("AddUndoChunk", [&] { return AddCoreUndoChunk(chunk); });
}

std::int32_t MaxAdaptorInterface::EndUndoGroup() {
    return AnswerStatus("EndUndoGroup", [&] {
        std::optional<Arriving> arriving;
        if (OpenUndoGroups().cancelRequested) arriving.emplace();
        return EndGroupBy(&::EndUndoGroup);
    });
}

std::int32_t MaxAdaptorInterface::CancelUndoGroup() {
    return AnswerStatus("CancelUndoGroup", [&] {
        const Arriving arriving;
        return EndGroupBy(&::CancelUndoGroup);
    });
}

bool MaxAdaptorInterface::IsHoldingUndo() {
    return AnswerCore("IsHoldingUndo", [&] { return ::IsHoldingUndo(); });
}

bool MaxAdaptorInterface::PerformUndo() {
    return AnswerCore("PerformUndo", [&] {
        const Arriving arriving;
        UtilityManager::Get().ExecuteStringScript(kUndoScript);
        return true;
    });
}

std::int32_t MaxAdaptorInterface::FlushUndoBuffer() {
    return AnswerStatus("FlushUndoBuffer", [&] {
        const TVL::Log scope("Flushing 3ds max undo buffer", TVL::Log::kNotice);
        GetCOREInterface()->FlushUndoBuffer();
        return 0;
    });
}

// Time -------------------------------------------------------------------------------------------

double MaxAdaptorInterface::GetCurrentTime() {
    return AnswerCore("GetCurrentTime", [&] { return CurrentSeconds(); });
}

void MaxAdaptorInterface::SetCurrentTime(double seconds) {
    AnswerCore("SetCurrentTime", [&] { SetCurrentSeconds(seconds); });
}

std::pair<double, double> MaxAdaptorInterface::GetAnimationRange() {
    return AnswerCore("GetAnimationRange", [&] { return AnimationRangeSeconds(); });
}

void MaxAdaptorInterface::SetAnimationRange(std::pair<double, double> startEnd) {
    AnswerCore("SetAnimationRange",
               [&] { SetAnimationRangeSeconds(startEnd.first, startEnd.second); });
}

double MaxAdaptorInterface::GetFrameRate() {
    return AnswerCore("GetFrameRate", kUsualFrameRate, [&] { return ::GetFrameRate(); });
}

double MaxAdaptorInterface::GetFrameDuration() {
    return AnswerCore("GetFrameDuration", 1.0 / kUsualFrameRate,
                      [&] { return 1.0 / ::GetFrameRate(); });
}

// The user's eyes and hands ----------------------------------------------------------------------

void MaxAdaptorInterface::ForceRedraw() {
    AnswerCore("ForceRedraw", [&] { GetCOREInterface()->ForceCompleteRedraw(false); });
}

void MaxAdaptorInterface::RequestFocus() {
    AnswerCore("RequestFocus", [&] {
        TVL::Log(TVL::Log::kNotice).Write("Requesting focus");
        if (focus.focusCount == 0) GetCOREInterface()->DisableAccelerators();
        ++focus.focusCount;
    });
}

void MaxAdaptorInterface::RestoreFocus() {
    AnswerCore("RestoreFocus", [&] {
        TVL::Log(TVL::Log::kNotice).Write("Restoring focus");
        --focus.focusCount;
        if (focus.focusCount == 0) GetCOREInterface()->EnableAccelerators();
    });
}

// Recording --------------------------------------------------------------------------------------

std::int32_t MaxAdaptorInterface::BeginRecording(std::vector<TVL::CoreElement*> owners) {
    return AnswerStatus("BeginRecording", [&] { return ::BeginRecording(owners); });
}

std::int32_t MaxAdaptorInterface::BeginRecordingUnkeyed(std::vector<TVL::CoreElement*>) {
    return AnswerStatus("BeginRecordingUnkeyed", [&] { return ::BeginRecordingUnkeyed(); });
}

std::int32_t MaxAdaptorInterface::EndRecording() {
    return AnswerStatus("EndRecording", [&] { return ::EndRecording(); });
}

// Messages ---------------------------------------------------------------------------------------

std::string MaxAdaptorInterface::GetName() const {
    return AnswerCore("GetName", [&] { return MessageNode::GetName(); });
}

std::int32_t MaxAdaptorInterface::Listen(TVL::Util::MessageNode* node) {
    return AnswerStatus("Listen", [&] { return MessageNode::Listen(node); });
}

std::int32_t MaxAdaptorInterface::StopListening(TVL::Util::MessageNode* node) {
    return AnswerStatus("StopListening", [&] { return MessageNode::StopListening(node); });
}

void MaxAdaptorInterface::Receive(TVL::Util::Message* message, bool) {
    AnswerCore("Receive", [&] {
        if (message && message->id == TVL::kButtonPressed) ConvertAllControllers();
    });
}

std::int32_t MaxAdaptorInterface::Send(TVL::Util::MessageNode* target,
                                       TVL::Util::Message* message) {
    std::int32_t status = 0;
    CallCore("Receive", [&] { status = MessageNode::Send(target, message); });
    return status;
}

void MaxAdaptorInterface::Broadcast(TVL::Util::Message* message) {
    CallCore("Receive", [&] { MessageNode::Broadcast(message); });
}
