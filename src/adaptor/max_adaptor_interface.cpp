#include "adaptor/max_adaptor_interface.h"

#include "adaptor/trace_file.h"
#include "adaptor/utility_manager.h"
#include "adaptor/xml_resource.h"
#include "controllers/conversion.h"
#include "core_link/core_call.h"
#include "host/interface.h"
#include "measures/host_clock.h"
#include "nodes/merging.h"
#include "nodes/node_creation.h"
#include "persistence/scene/claim_nodes.h"
#include "resources/resource_ids.h"

namespace {

// What the Core sends when its option button to convert all controllers is pressed.
constexpr std::int32_t kConvertAllMessage = 324;

constexpr const char* kUndoScript = "max undo";

constexpr const char* kNotImplementedCode = "NOTIMPLEMENTED";
constexpr const char* kNotImplementedText = "The function is not yet implemented";

MaxAdaptorInterface& Adaptor() {
    return *MaxAdaptorInterface::GetInstance();
}

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

// A Core that is called need not have met the adaptor, and one that is called may destroy it.
CoreBrackets BracketsSoFar() {
    const MaxAdaptorInterface* const adaptor = MaxAdaptorInterface::instance;
    if (!adaptor) return {};
    return {adaptor->recording.depth, adaptor->focus.focusCount, adaptor->undo.nest};
}

void EndBracketsSince(const CoreBrackets& before) {
    if (!MaxAdaptorInterface::instance) return;
    while (RecordingInProgress().depth > before.recordings)
        EndRecording();
    CancelHoldBegunSince(before.nests);
    FocusState& focus = Adaptor().focus;
    while (focus.focusCount > before.focus)
        RestoreFocus(focus);
}

MaxAdaptorInterface::MaxAdaptorInterface() : MessageNode("MaxAdaptorInterface") {
    TVL::ErrorCode notImplemented(kNotImplementedCode, kNotImplementedText,
                                  TVL::ErrorCode::kCritical);
    TVL::ErrorCode::GetInstance()->Register(&notImplemented);
}

// Identity ---------------------------------------------------------------------------------------

TVL::WindowHandle MaxAdaptorInterface::GetPlatformWindow() {
    return GetCOREInterface()->GetMAXHWnd();
}

XMLNode MaxAdaptorInterface::GetOptionsPanel() {
    return LoadXMLResource(OptionPanel);
}

std::int32_t MaxAdaptorInterface::SetLog(TVL::Log* log) {
    const TraceHandover handover(log);
    return AdaptorInterface::SetLog(log);
}

std::int32_t MaxAdaptorInterface::ClearLog() {
    const TraceHandover handover;
    return AdaptorInterface::ClearLog();
}

// Nodes ------------------------------------------------------------------------------------------

TVL::CNode* MaxAdaptorInterface::CreateLensNode(TVL::CoreElement* owner, std::string nodeName,
                                                TVL::CNode* parent, TVL::NodeListener* listener) {
    return ::CreateLensNode(owner, nodeName, parent, listener);
}

TVL::CNode* MaxAdaptorInterface::CreateHelperNode(TVL::CoreElement* owner, std::string nodeName,
                                                  TVL::CNode* parent, TVL::CMesh mesh,
                                                  TVL::NodeListener* listener) {
    return ::CreateHelperNode(owner, nodeName, parent, mesh, listener);
}

TVL::CNode* MaxAdaptorInterface::createMesh(void*, std::string) {
    const TVL::Log scope("(NOT IMPLEMENTED)createMesh " + GetName(), TVL::Log::kError);
    return nullptr;
}

TVL::CNode* MaxAdaptorInterface::FindNode(TVL::CoreElement* owner, std::string nodeName) {
    return ::FindNode(owner, nodeName);
}

std::vector<TVL::CNode*> MaxAdaptorInterface::GetNodes(TVL::CoreElement* owner) {
    return ::GetNodes(owner);
}

std::vector<TVL::CNode*> MaxAdaptorInterface::ClaimNodes(std::string pluginName, XMLNode nodeInfo) {
    return ::ClaimNodes(pluginName, nodeInfo);
}

std::vector<TVL::CNode*> MaxAdaptorInterface::MergeModels(std::string path) {
    std::vector<TVL::CNode*> merged = ::MergeModels(path);
    ++AdaptorNodes().arrivals;
    return merged;
}

// Undo -------------------------------------------------------------------------------------------

std::int32_t MaxAdaptorInterface::BeginUndoGroup(std::string groupName) {
    return ::BeginUndoGroup(std::move(groupName));
}

std::int32_t MaxAdaptorInterface::AddUndoChunk(TVL::CUndo* chunk) {
    return AddCoreUndoChunk(chunk);
}

std::int32_t MaxAdaptorInterface::EndUndoGroup() {
    const bool mayCancel = OpenUndoGroups().cancelRequested;
    const std::int32_t status = ::EndUndoGroup();
    if (mayCancel) ++AdaptorNodes().arrivals;
    return status;
}

std::int32_t MaxAdaptorInterface::CancelUndoGroup() {
    return ::CancelUndoGroup();
}

bool MaxAdaptorInterface::IsHoldingUndo() {
    return ::IsHoldingUndo();
}

bool MaxAdaptorInterface::PerformUndo() {
    UtilityManager::Get().ExecuteStringScript(kUndoScript);
    ++AdaptorNodes().arrivals;
    return true;
}

std::int32_t MaxAdaptorInterface::FlushUndoBuffer() {
    const TVL::Log scope("Flushing 3ds max undo buffer", TVL::Log::kNotice);
    GetCOREInterface()->FlushUndoBuffer();
    return 0;
}

// Time -------------------------------------------------------------------------------------------

double MaxAdaptorInterface::GetCurrentTime() {
    return CurrentSeconds();
}

void MaxAdaptorInterface::SetCurrentTime(double seconds) {
    SetCurrentSeconds(seconds);
}

std::pair<double, double> MaxAdaptorInterface::GetAnimationRange() {
    return AnimationRangeSeconds();
}

void MaxAdaptorInterface::SetAnimationRange(std::pair<double, double> startEnd) {
    SetAnimationRangeSeconds(startEnd.first, startEnd.second);
}

double MaxAdaptorInterface::GetFrameRate() {
    return ::GetFrameRate();
}

double MaxAdaptorInterface::GetFrameDuration() {
    return 1.0 / ::GetFrameRate();
}

// The user's eyes and hands ----------------------------------------------------------------------

void MaxAdaptorInterface::ForceRedraw() {
    GetCOREInterface()->ForceCompleteRedraw(false);
}

void MaxAdaptorInterface::RequestFocus() {
    ::RequestFocus(focus);
}

void MaxAdaptorInterface::RestoreFocus() {
    ::RestoreFocus(focus);
}

// Recording --------------------------------------------------------------------------------------

std::int32_t MaxAdaptorInterface::BeginRecording(std::vector<TVL::CoreElement*> owners) {
    return ::BeginRecording(owners);
}

std::int32_t MaxAdaptorInterface::BeginRecordingUnkeyed(std::vector<TVL::CoreElement*>) {
    return ::BeginRecordingUnkeyed();
}

std::int32_t MaxAdaptorInterface::EndRecording() {
    return ::EndRecording();
}

// Messages ---------------------------------------------------------------------------------------

void MaxAdaptorInterface::Receive(TVL::Util::Message* message, bool) {
    if (message && message->id == kConvertAllMessage) ConvertAllControllers();
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
