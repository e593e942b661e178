#include "player/played_objects.h"

#include <charconv>

namespace player {

XMLNode PlayedInterface::GetCoreState() {
    recorder::ValueReader answer = Ask(Operation::CoreInterface_GetCoreState);
    return answer.IsAtEnd() ? XMLNode() : answer.Tree();
}

void PlayedInterface::SetCoreState(XMLNode state) {
    Ask(Operation::CoreInterface_SetCoreState, state);
}

void PlayedInterface::ResetCore() {
    Ask(Operation::CoreInterface_ResetCore);
}

void PlayedInterface::ShowCore(TVL::WindowHandle) {
    Ask(Operation::CoreInterface_ShowCore, std::uint64_t{0});
}

void PlayedInterface::NotifyTimeChanged(double seconds) {
    Ask(Operation::CoreInterface_NotifyTimeChanged, seconds);
}

bool PlayedInterface::IsCoreRunning() {
    return Ask(Operation::CoreInterface_IsCoreRunning).Truth();
}

void PlayedInterface::StopCore() {
    Ask(Operation::CoreInterface_StopCore);
}

TVL::Util::MessageNode* PlayedInterface::GetOptionNode(int option, int unused) {
    recorder::ValueReader answer = Ask(Operation::CoreInterface_GetOptionNode, option, unused);
    return objects_.FindMessageNode(answer.Object());
}

void PlayedInterface::BindOption(int option, int unused) {
    Ask(Operation::CoreInterface_BindOption, option, unused);
}

void PlayedInterface::GetOptionValue(int option, bool* value) {
    recorder::ValueReader answer = Ask(Operation::CoreInterface_GetOptionValue, option, *value);
    if (!answer.IsAtEnd()) *value = answer.Truth();
}

PlayedOwner::PlayedOwner(ObjectId id, PlayedCore& core, LiveObjects& objects,
                         TVL::PluginRecord& record)
    : PlayedObject(id, core, objects) {
    plugin = &record;
}

std::intptr_t PlayedOwner::HandleExtension(int extension, void* argument) {
    auto* const tree =
        extension == TVL::kSceneBeingSaved ? static_cast<XMLNode*>(argument) : nullptr;
    const recorder::ExtensionValue said =
        tree ? recorder::ExtensionValue{'t', 0, tree} : recorder::ExtensionValue();
    recorder::ValueReader answer = Ask(Operation::CExtendable_HandleExtension, extension, said);
    if (answer.IsAtEnd()) return 0;
    const auto result = answer.Letter() == 'i' ? static_cast<std::intptr_t>(answer.Word()) : 0;
    if (answer.Letter() == 't' && tree) *tree = answer.Tree();
    return result;
}

std::vector<int> PlayedOwner::ListExtensions() {
    recorder::ValueReader answer = Ask(Operation::CExtendable_ListExtensions);
    const std::string_view text = answer.Text();
    std::vector<int> ids;
    const char* at = text.data();
    const char* const end = at + text.size();
    int id = 0;
    for (auto read = std::from_chars(at, end, id); read.ec == std::errc();
         read = std::from_chars(at, end, id)) {
        ids.push_back(id);
        at = read.ptr == end ? end : read.ptr + 1;
    }
    return ids;
}

bool PlayedOwner::HasExtension(int extension) {
    return Ask(Operation::CExtendable_HasExtension, extension).Truth();
}

void PlayedListener::OnNodeRemoved(TVL::CNode* node) {
    Ask(Operation::NodeListener_OnNodeRemoved, objects_.IdOf(node));
}

void PlayedListener::OnNodeRestored(TVL::CNode* node) {
    Ask(Operation::NodeListener_OnNodeRestored, objects_.IdOf(node));
}

void PlayedChunk::Undo(bool isUndo) {
    Ask(Operation::CUndo_Undo, isUndo);
}

void PlayedChunk::Redo() {
    Ask(Operation::CUndo_Redo);
}

void PlayedChunk::Release() try {
    Ask(Operation::CUndo_Release);
    objects_.End(id_);
} catch (...) {
    objects_.End(id_);
    throw;
}

PlayedMessageNode::PlayedMessageNode(ObjectId id, PlayedCore& core, LiveObjects& objects,
                                     std::string nodeName)
    : MessageNode(std::move(nodeName)), PlayedObject(id, core, objects) {}

void PlayedMessageNode::Receive(TVL::Util::Message* message, bool isBroadcast) {
    if (!message) return;
    const ObjectId sender = objects_.IdOfAdaptorNode(message->sender);
    Ask(Operation::MessageNode_Receive, sender, message->id, std::string_view(message->text),
        message->wParam, isBroadcast);
}

void PlayedMessageNode::Broadcast(TVL::Util::Message* message) {
    core_.Broadcast(id_, [&] { MessageNode::Broadcast(message); });
}

}  // namespace player
