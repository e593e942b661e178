#include "headless/copies.h"
#include "headless/memory_chunks.h"
#include "tests/headless/host_world.h"

namespace {

using ObjectTest = HostWorld;

TEST_F(ObjectTest, ACameraStartsWithoutKeysAndItsStepsOutliveIt) {
    AnimateOn();
    CameraObject* camera = host.CreateCameraObject(0);
    AnimateOff();
    EXPECT_EQ(camera->SubAnim(0)->SubAnim(0)->NumKeys(), 0);
    Step([&] {
        camera->SetConeState(1);
        camera->DeleteMe();
    });
    EXPECT_TRUE(session.Undo()) << "its maker has freed it";
    EXPECT_EQ(headless::NewGuide(headless::NewSphere(10, 16), {}), nullptr) << "no such plug-in";
}

TEST_F(ObjectTest, SplinesAreFollowedBySegmentOrEvenlyByLength) {
    // The length, and the places at half of the segments and at half of the length.
    const std::tuple<headless::Spline, double, Point3, Point3> cases[] = {
        {headless::StraightLines({{0, 0, 0}, {1, 0, 0}, {4, 0, 0}}), 4, {1, 0, 0}, {2, 0, 0}},
        {{{{{}, {}, {1, 1, 0}}, {{0, 1, 0}, {1, 0, 0}, {}}}},  // with a cusp in the middle
         2 * std::sqrt(2.0) - 1,
         {0.5F, 0.75F, 0},
         {0.5F, 0.75F, 0}}};
    for (const auto& [spline, length, half, halfAlong] : cases) {
        SCOPED_TRACE(length);
        ShapeObject* shape = headless::NewSplines({spline});
        EXPECT_NEAR(shape->LengthOfCurve(0, 0), length, 1e-6 * length);
        ExpectNear(shape->InterpCurve3D(0, 0, 0.5F, PARAM_SIMPLE), half, 1e-4);
        ExpectNear(shape->InterpCurve3D(0, 0, 0.5F, PARAM_NORMALIZED), halfAlong, 1e-4);
        shape->InterpCurve3D(0, 7, kNaN, PARAM_NORMALIZED);
        shape->ConvertToType(0, kTriObjectClassId)->DeleteThis();
        shape->DeleteThis();
    }
}

// What is stored --------------------------------------------------------------------------------

using Bytes = std::vector<std::byte>;
using Words = std::vector<std::uint32_t>;

std::uint32_t Bits(float number) {
    return std::bit_cast<std::uint32_t>(number);
}

// One chunk of 4-byte numbers.
Bytes Chunk(std::uint16_t id, const Words& words) {
    return headless::SavedBytes([&](ISave* save) {
        save->BeginChunk(id);
        save->Write(words.data(), static_cast<std::uint32_t>(words.size() * sizeof(std::uint32_t)),
                    nullptr);
        return save->EndChunk();
    });
}

class StoredObjectsTest : public HostWorld {
  protected:
    ~StoredObjectsTest() override {
        for (ReferenceTarget* object : objects)
            object->DeleteMe();
    }

    enum Kind { kFloat, kTransform, kCamera, kMesh, kLine, kSphere, kBend };
    const std::vector<ReferenceTarget*> objects{
        NewFloat(),
        NewTransform(),
        host.CreateCameraObject(0),
        headless::NewGround(2, 2),
        headless::NewSplines({{{{{}, {1, 2, 3}, {4, 5, 6}}}, true}}),
        headless::NewSphere(2, 20),
        headless::NewBend(headless::NewGround(1, 1), 45)};
};

TEST_F(StoredObjectsTest, WhatIsCopiedOrStoredComesBack) {
    AnimateOn();
    for (TimeValue t = 0; t < 2100; ++t) {  // more keys than are read at once
        SetXFormPacket packet;
        packet.tmAxis.SetTranslate({1, 2, static_cast<float>(t) / 3});
        static_cast<Control*>(objects[kTransform])->SetValue(t, &packet, 1, CTRL_ABSOLUTE);
    }
    AnimateOff();
    static_cast<CameraObject*>(objects[kCamera])->SetFOVType(2);
    for (ReferenceTarget* object : objects) {
        const Bytes bytes = headless::SavedBytes(*object);
        auto* const loaded = static_cast<ReferenceTarget*>(static_cast<Animatable*>(
            host.CreateInstance(object->SuperClassID(), object->ClassID())));
        EXPECT_EQ(headless::LoadBytes(bytes, *loaded), IO_OK);
        for (ReferenceTarget* same : {loaded, headless::CopyOf(*object)}) {
            EXPECT_EQ(headless::SavedBytes(*same), bytes);
            same->DeleteMe();
        }
        EXPECT_EQ(headless::SavedBytes(*object), bytes) << "the copy shares with its original";
    }
}

TEST_F(StoredObjectsTest, NonsenseIsRefusedAndOfKeysWhatIsWholeIsKeptInOrder) {
    const std::tuple<Kind, std::uint16_t, Words, const char*> cases[] = {
        {kSphere, 1, {Bits(kNaN), 20}, "a radius that is no number"},
        {kSphere, 1, {Bits(1), 2'000'000'000}, "too many segments"},
        {kCamera, 1, {3, 0, 0, 0}, "an unknown type of field of view"},
        {kMesh, 2, {1, 0, 0, 1, 0, 0}, "a face without vertices"},
        {kMesh, 1, {0xFFFFFFFF, 0, 0, 0}, "fewer vertices than announced"},
        {kLine, 2, {1, 1, 0, 0, 0}, "a knot without its handles"},
        {kBend, 1, {Bits(kNaN)}, "a speed that is no number"},
        {kFloat, 1, {2, 12, 0, 0}, "another version"},
        {kTransform, 4, {1, 20, 0, 0}, "a part that no transform has"}};
    for (const auto& [kind, chunk, words, why] : cases)
        EXPECT_EQ(headless::LoadBytes(Chunk(chunk, words), *objects[kind]), IO_ERROR) << why;

    const Words keys{1,  12, 9,       Bits(9),  // of which four and a part are there
                     20, 0,  Bits(2),           //
                     10, 0,  Bits(1),           //
                     20, 1,  Bits(3),           // of equal times the last
                     0,  0,  Bits(0), 77};
    const Words sorted{1, 12, 3, Bits(9), 0, 0, Bits(0), 10, 0, Bits(1), 20, 1, Bits(3)};
    EXPECT_EQ(headless::LoadBytes(Chunk(1, keys), *objects[kFloat]), IO_ERROR);
    EXPECT_EQ(headless::SavedBytes(*objects[kFloat]), Chunk(1, sorted));

    // A length is believed only as far as its level reaches.
    Bytes bytes = Chunk(1, {7});
    bytes.pop_back();
    headless::LoadBytes(bytes, [](ILoad* load) {
        EXPECT_EQ(load->OpenChunk(), IO_ERROR);
        EXPECT_EQ(load->OpenChunk(), IO_END);
        return load->CloseChunk();
    });
}

}  // namespace
