#include "recorder/proxies/adaptor_proxy.h"

namespace recorder {

using TVL::AdaptorInterface;
using TVL::CNode;
using TVL::CoreElement;
using enum Operation;

namespace {

std::vector<CNode*> AsNodes(const std::vector<NodeProxy*>& proxies) {
    return {proxies.begin(), proxies.end()};
}

}  // namespace

// Identity, and what the Core places -------------------------------------------------------------

std::int32_t AdaptorProxy::GetVersion() {
    return Pass<AdaptorInterface_GetVersion, &AdaptorInterface::GetVersion>();
}
std::int32_t AdaptorProxy::SetErrorCode(TVL::ErrorCode* registry) {
    const ObjectId id = scribe_.IdOf(ObjectKind::kRegistry, registry);
    const auto make = [&] { return real_->SetErrorCode(registry); };
    return scribe_.Record<AdaptorInterface_SetErrorCode>(id_, make, id);
}
std::int32_t AdaptorProxy::ClearErrorCode() {
    return Pass<AdaptorInterface_ClearErrorCode, &AdaptorInterface::ClearErrorCode>();
}
std::int32_t AdaptorProxy::SetLog(TVL::Log* log) {
    const ObjectId id = scribe_.IdOf(ObjectKind::kLog, log);
    const auto make = [&] { return real_->SetLog(log); };
    return scribe_.Record<AdaptorInterface_SetLog>(id_, make, id);
}
std::int32_t AdaptorProxy::ClearLog() {
    return Pass<AdaptorInterface_ClearLog, &AdaptorInterface::ClearLog>();
}
std::string AdaptorProxy::GetName() {
    return Pass<AdaptorInterface_GetName, &AdaptorInterface::GetName>();
}
std::string AdaptorProxy::GetShortName() {
    return Pass<AdaptorInterface_GetShortName, &AdaptorInterface::GetShortName>();
}
std::string AdaptorProxy::GetPlatformName() {
    return Pass<AdaptorInterface_GetPlatformName, &AdaptorInterface::GetPlatformName>();
}
std::string AdaptorProxy::GetPlatformVersion() {
    return Pass<AdaptorInterface_GetPlatformVersion, &AdaptorInterface::GetPlatformVersion>();
}
TVL::WindowHandle AdaptorProxy::GetPlatformWindow() {
    return Pass<AdaptorInterface_GetPlatformWindow, &AdaptorInterface::GetPlatformWindow>();
}
XMLNode AdaptorProxy::GetOptionsPanel() {
    return Pass<AdaptorInterface_GetOptionsPanel, &AdaptorInterface::GetOptionsPanel>();
}

// Nodes ------------------------------------------------------------------------------------------

CNode* AdaptorProxy::CreateLensNode(CoreElement* owner, std::string name, CNode* parent,
                                    TVL::NodeListener* listener) {
    OwnerProxy* const ownerHere = owners_.Named(owner);
    const NodeProxy* const above = NodeProxy::From(parent);
    const auto make = [&] {
        return nodes_.Created(listener, [&](TVL::NodeListener* here) {
            return real_->CreateLensNode(ownerHere, name, RealOf(above), here);
        });
    };
    return scribe_.Record<AdaptorInterface_CreateLensNode>(
        id_, make, ownerHere, name, above, scribe_.IdOf(ObjectKind::kListener, listener));
}

CNode* AdaptorProxy::CreateHelperNode(CoreElement* owner, std::string name, CNode* parent,
                                      TVL::CMesh mesh, TVL::NodeListener* listener) {
    OwnerProxy* const ownerHere = owners_.Named(owner);
    const NodeProxy* const above = NodeProxy::From(parent);
    const auto make = [&] {
        return nodes_.Created(listener, [&](TVL::NodeListener* here) {
            return real_->CreateHelperNode(ownerHere, name, RealOf(above), std::move(mesh), here);
        });
    };
    return scribe_.Record<AdaptorInterface_CreateHelperNode>(
        id_, make, ownerHere, name, above, mesh, scribe_.IdOf(ObjectKind::kListener, listener));
}

CNode* AdaptorProxy::createMesh(void* unused, std::string name) {
    const auto make = [&] { return nodes_.New(real_->createMesh(unused, name)); };
    return scribe_.Record<AdaptorInterface_createMesh>(id_, make, name);
}

CNode* AdaptorProxy::FindNode(CoreElement* owner, std::string name) {
    OwnerProxy* const ownerHere = owners_.Of(owner);
    const auto make = [&] { return nodes_.Known(real_->FindNode(ownerHere, name)); };
    return scribe_.Record<AdaptorInterface_FindNode>(id_, make, ownerHere, name);
}

std::vector<CNode*> AdaptorProxy::GetNodes(CoreElement* owner) {
    OwnerProxy* const ownerHere = owners_.Of(owner);
    const auto make = [&] { return nodes_.Known(real_->GetNodes(ownerHere)); };
    return AsNodes(scribe_.Record<AdaptorInterface_GetNodes>(id_, make, ownerHere));
}

std::vector<CNode*> AdaptorProxy::ClaimNodes(std::string pluginName, XMLNode nodeInfo) {
    const auto make = [&] { return nodes_.New(real_->ClaimNodes(pluginName, nodeInfo)); };
    return AsNodes(scribe_.Record<AdaptorInterface_ClaimNodes>(id_, make, pluginName, nodeInfo));
}

std::vector<CNode*> AdaptorProxy::MergeModels(std::string path) {
    const auto make = [&] { return nodes_.New(real_->MergeModels(path)); };
    return AsNodes(scribe_.Record<AdaptorInterface_MergeModels>(id_, make, path));
}

// Undo -------------------------------------------------------------------------------------------

std::int32_t AdaptorProxy::BeginUndoGroup(std::string name) {
    return Pass<AdaptorInterface_BeginUndoGroup, &AdaptorInterface::BeginUndoGroup>(
        std::move(name));
}
std::int32_t AdaptorProxy::AddUndoChunk(TVL::CUndo* chunk) {
    ObjectId id = 0;
    TVL::CUndo* const given = owners_.WrapChunk(chunk, id);
    const auto make = [&] { return real_->AddUndoChunk(given); };
    return scribe_.Record<AdaptorInterface_AddUndoChunk>(id_, make, id);
}
std::int32_t AdaptorProxy::EndUndoGroup() {
    return Pass<AdaptorInterface_EndUndoGroup, &AdaptorInterface::EndUndoGroup>();
}
std::int32_t AdaptorProxy::CancelUndoGroup() {
    return Pass<AdaptorInterface_CancelUndoGroup, &AdaptorInterface::CancelUndoGroup>();
}
bool AdaptorProxy::IsHoldingUndo() {
    return Pass<AdaptorInterface_IsHoldingUndo, &AdaptorInterface::IsHoldingUndo>();
}
bool AdaptorProxy::PerformUndo() {
    return Pass<AdaptorInterface_PerformUndo, &AdaptorInterface::PerformUndo>();
}
std::int32_t AdaptorProxy::FlushUndoBuffer() {
    return Pass<AdaptorInterface_FlushUndoBuffer, &AdaptorInterface::FlushUndoBuffer>();
}

// Time, eyes and hands ---------------------------------------------------------------------------

double AdaptorProxy::GetCurrentTime() {
    return Pass<AdaptorInterface_GetCurrentTime, &AdaptorInterface::GetCurrentTime>();
}
void AdaptorProxy::SetCurrentTime(double seconds) {
    Pass<AdaptorInterface_SetCurrentTime, &AdaptorInterface::SetCurrentTime>(seconds);
}
std::pair<double, double> AdaptorProxy::GetAnimationRange() {
    return Pass<AdaptorInterface_GetAnimationRange, &AdaptorInterface::GetAnimationRange>();
}
void AdaptorProxy::SetAnimationRange(std::pair<double, double> startEnd) {
    Pass<AdaptorInterface_SetAnimationRange, &AdaptorInterface::SetAnimationRange>(startEnd);
}
double AdaptorProxy::GetFrameRate() {
    return Pass<AdaptorInterface_GetFrameRate, &AdaptorInterface::GetFrameRate>();
}
double AdaptorProxy::GetFrameDuration() {
    return Pass<AdaptorInterface_GetFrameDuration, &AdaptorInterface::GetFrameDuration>();
}
void AdaptorProxy::ForceRedraw() {
    Pass<AdaptorInterface_ForceRedraw, &AdaptorInterface::ForceRedraw>();
}
void AdaptorProxy::RequestFocus() {
    Pass<AdaptorInterface_RequestFocus, &AdaptorInterface::RequestFocus>();
}
void AdaptorProxy::RestoreFocus() {
    Pass<AdaptorInterface_RestoreFocus, &AdaptorInterface::RestoreFocus>();
}

// Recording --------------------------------------------------------------------------------------

template <Operation kOperation, auto kMethod>
std::int32_t AdaptorProxy::Begin(const std::vector<CoreElement*>& owners) {
    std::vector<OwnerProxy*> ownersHere;
    for (CoreElement* const owner : owners)
        ownersHere.push_back(owners_.Of(owner));
    const auto make = [&] {
        return (real_->*kMethod)(std::vector<CoreElement*>(ownersHere.begin(), ownersHere.end()));
    };
    return scribe_.Record<kOperation>(id_, make, ownersHere);
}

std::int32_t AdaptorProxy::BeginRecording(std::vector<CoreElement*> owners) {
    return Begin<AdaptorInterface_BeginRecording, &AdaptorInterface::BeginRecording>(owners);
}
std::int32_t AdaptorProxy::BeginRecordingUnkeyed(std::vector<CoreElement*> owners) {
    return Begin<AdaptorInterface_BeginRecordingUnkeyed, &AdaptorInterface::BeginRecordingUnkeyed>(
        owners);
}
std::int32_t AdaptorProxy::EndRecording() {
    return Pass<AdaptorInterface_EndRecording, &AdaptorInterface::EndRecording>();
}

}  // namespace recorder
