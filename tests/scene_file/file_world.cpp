#include "tests/scene_file/file_world.h"

#include "host/units.h"
#include "tests/support/test_class.h"

IOResult odd::SaveText(ISave& save, std::uint16_t id, const std::string& text) {
    for (int i = 0; saving == 'n' && i < 3; ++i)
        save.EndChunk();
    if (saving == 'n') save.Write("raw", 3, nullptr);
    save.BeginChunk(id);
    save.WriteCString(text.c_str());
    if (saving != 'n') save.EndChunk();
    return saving == 'f' ? IO_ERROR : IO_OK;
}

IOResult odd::LoadText(ILoad& load, std::string& text) {
    for (const char manner : loading) {
        if (manner == 'x') return IO_ERROR;
        if (manner == 't') throw std::runtime_error("no mood");
        const IOResult opened = load.OpenChunk();
        if (opened != IO_OK) return opened == IO_END ? IO_OK : opened;
        char* stored = nullptr;
        char some = 0;
        if (manner != 'p' && manner != 's' && load.ReadCStringChunk(&stored) == IO_OK)
            text = stored;
        if (manner == 'p' || manner == 'b') load.Read(&some, sizeof some, nullptr);
        if (manner == 'f') return IO_ERROR;
        if (manner == 'o') break;
        load.CloseChunk();
    }
    return IO_OK;
}

namespace {

struct Utility final : GUP {
    std::uint32_t Start() override { return GUPRESULT_KEEP; }
    void Stop() override {}
    void DeleteThis() override { delete this; }
    IOResult Save(ISave* save) override {
        for (const auto& [id, text] : odd::written)
            if (odd::SaveText(*save, id, text) != IO_OK) return IO_ERROR;
        return IO_OK;
    }
    IOResult Load(ILoad* load) override {
        std::string ignored;
        return odd::LoadText(*load, ignored);
    }
};

}  // namespace

void FileWorld::Start(bool isKnowing, const headless::SessionSettings& settings) {
    static TestClass classes[] = {
        {"Odd helper", HELPER_CLASS_ID, {0x51, 0x52}, [] { return new odd::Helper; }},
        {"Odd control", CTRL_MATRIX3_CLASS_ID, {0x53, 0x54}, [] { return new odd::Transform; }},
        {"Odd utility", GUP_CLASS_ID, {0x55, 0x56}, [] { return new Utility; }}};
    End();
    host = std::make_unique<headless::Session>(settings);
    for (TestClass& type : classes)
        if (isKnowing) host->RegisterClass(&type);
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
    Start(true, {.frameRate = 25, .unitType = UNITS_METERS, .unitScale = 0.025F});
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
