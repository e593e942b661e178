#include "tests/scene_file/file_world.h"

namespace fs = std::filesystem;

std::size_t FileWorld::FilesInFolder() const {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder_.Path()), fs::directory_iterator()));
}

void FileWorld::BuildScene() {
    Interface& host = *GetCOREInterface();
    const auto add = [&](const char* name, Object* object, INode* parent) {
        INode* node = host.CreateObjectNode(object);
        node->SetName(name);
        if (parent) parent->AttachChild(node, 0);
        return node;
    };
    host.DeleteNode(add("gone", CreateNewTriObject(), nullptr));  // its handle stays used
    INode* late = add("late", headless::NewSphere(3, 8), nullptr);
    INode* hip = add("Hip", CreateNewTriObject(), nullptr);
    INode* twin = add("Hip", hip->GetObjectRef(), hip);
    add("eye", host.CreateCameraObject(0), twin);
    add("line", headless::NewSplines({headless::StraightLines({{0, 0, 0}, {1, 2, 3}}), {}}), hip);
    hip->AttachChild(late, 0);  // a child that is older than its parent
    twin->SetUserPropString("key \n<&\"", std::string("\0\xFF>", 3));
    twin->SetUserPropString("empty", "");
    twin->SetWireColor(0x123456);
    twin->Hide(true);

    auto* helper = new odd::Helper;
    helper->text = "of the helper";
    auto* control = new odd::Transform;
    control->text = "of the control";
    INode* odd = add("", helper, twin);
    odd->SetTMController(control);
    control->ReplaceReference(1, hip->GetTMController());
    helper->ReplaceReference(0, late);
    Host().Select({"Hip", "line"});
    Host().SetTime(77);
    Host().SetRange({-5, 4000});
}
