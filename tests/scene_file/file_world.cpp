#include "tests/scene_file/file_world.h"

#include "host/units.h"

void FileWorld::Start(Classes classes, const headless::SessionSettings& settings) {
    End();
    host = std::make_unique<headless::Session>(settings);
    if (classes == Classes::kKnown) odd::Register(*host);
    host->Start();
}

void FileWorld::End() {
    if (!host) return;
    host.reset();
    EXPECT_EQ(headless::TakeCensus().objectCount, 0U);
    EXPECT_EQ(headless::TakeCensus().heapBlocks, 0U);
}

INode* FileWorld::Add(const char* name, Object* object, INode* parent) {
    INode* node = GetCOREInterface()->CreateObjectNode(object);
    node->SetName(name);
    if (parent) parent->AttachChild(node, 0);
    return node;
}

std::string FileWorld::SaveBuilt() {
    Start(Classes::kKnown, {.frameRate = 25, .unitType = UNITS_METERS, .unitScale = 0.025F});
    Interface& scene = *GetCOREInterface();
    scene.DeleteNode(Add("gone", CreateNewTriObject()));  // its handle stays used
    INode* late = Add("late", headless::NewSphere(3, 8));
    INode* hip = Add("Hip", CreateNewTriObject());
    INode* twin = Add("Hip", hip->GetObjectRef(), hip);
    Add("eye", scene.CreateCameraObject(0), twin);
    Add("line", headless::NewSplines({headless::StraightLines({{0, 0, 0}, {1, 2, 3}}), {}}), hip);
    hip->AttachChild(late, 0);  // a child that is older than its parent
    twin->SetUserPropString("key \n<&\"", std::string("\0\xFF>", 3));
    twin->SetUserPropString("empty", "");
    twin->SetWireColor(0x123456);
    twin->Hide(true);

    auto* helper = new odd::Helper;
    helper->text = "of the helper";
    auto* control = new odd::Transform;
    control->text = "of the control";
    Add("", helper, twin)->SetTMController(control);
    control->ReplaceReference(1, hip->GetTMController());
    helper->ReplaceReference(0, late);
    host->Select({"Hip", "line"});
    host->SetTime(77);
    host->SetRange({-5, 4000});
    return Save("built");
}
