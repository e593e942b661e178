#include <cstring>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "headless/copies.h"
#include "headless/memory_chunks.h"
#include "host/animate.h"
#include "tests/headless/host_world.h"

namespace {

using Bytes = std::vector<std::byte>;
using Words = std::vector<std::uint32_t>;

std::uint32_t Bits(float number) {
    std::uint32_t bits = 0;
    std::memcpy(&bits, &number, sizeof bits);
    return bits;
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
    // A value at rest, and keys, of more than are read at once.
    template <class Value>
    static Control* Animated(Control* control, Value at(TimeValue)) {
        for (TimeValue t = -1; t < 2100; ++t) {
            if (t == 0) AnimateOn();
            Value value = at(t);
            control->SetValue(t, &value, 1, CTRL_ABSOLUTE);
        }
        AnimateOff();
        return control;
    }
    static SetXFormPacket PlacedAt(TimeValue t) {
        SetXFormPacket packet;
        packet.tmAxis.SetTranslate({1, 2, static_cast<float>(t)});
        return packet;
    }

    ReferenceTarget* NewCamera() {
        CameraObject* camera = host.CreateCameraObject(0);
        camera->SetFOVType(2);
        camera->SetConeState(1);
        return camera;
    }

    static ReferenceTarget* NewMesh() {
        TriObject* object = CreateNewTriObject();
        Mesh& mesh = object->GetMesh();
        mesh.setNumVerts(3);
        mesh.setVert(1, {1, 2, 3});
        mesh.setNumFaces(2);
        mesh.faces[1].setVerts(0, 1, 2);
        mesh.setNumTVerts(2);
        mesh.setNumTVFaces(1);
        mesh.tvFace[0].setTVerts(0, 1, 1);
        return object;
    }

    std::vector<ReferenceTarget*> OneOfEach() {
        return {Animated<float>(NewFloat(), [](TimeValue t) { return static_cast<float>(t) / 3; }),
                Animated<SetXFormPacket>(NewTransform(), PlacedAt),
                NewCamera(),
                NewMesh(),
                headless::NewSplines({headless::StraightLines({{1, 2, 3}, {4, 5, 6}}),
                                      {{{{}, {1, 2, 3}, {4, 5, 6}}}, true}}),
                headless::NewSphere(2, 20),
                headless::NewBend(headless::NewGround(1, 1), 45)};
    }

    ReferenceTarget* EmptyOf(ReferenceTarget& object) {
        return static_cast<ReferenceTarget*>(
            static_cast<Animatable*>(host.CreateInstance(object.SuperClassID(), object.ClassID())));
    }
};

TEST_F(StoredObjectsTest, WhatIsCopiedOrStoredComesBackOverWhateverWasThere) {
    for (ReferenceTarget* object : OneOfEach()) {
        const Bytes bytes = headless::SavedBytes(*object);
        ReferenceTarget* copy = headless::CopyOf(*object);
        EXPECT_EQ(headless::SavedBytes(*copy), bytes);
        ReferenceTarget* empty = EmptyOf(*object);
        const Bytes fresh = headless::SavedBytes(*empty);
        EXPECT_EQ(headless::LoadBytes(bytes, *empty), IO_OK);
        EXPECT_EQ(headless::SavedBytes(*empty), bytes);
        EXPECT_EQ(headless::LoadBytes(fresh, *copy), IO_OK);
        EXPECT_EQ(headless::SavedBytes(*copy), fresh);
        EXPECT_EQ(headless::SavedBytes(*object), bytes) << "the copy shares with its original";
        for (ReferenceTarget* done : {object, copy, empty})
            done->DeleteMe();
    }
}

TEST_F(StoredObjectsTest, NonsenseIsRefused) {
    const std::uint32_t nan = Bits(std::numeric_limits<float>::quiet_NaN());
    enum Kind { kFloat, kTransform, kCamera, kMesh, kLine, kSphere, kBend };
    struct Case {
        Kind kind;
        std::uint16_t chunk;
        Words words;
        const char* why;
    };
    const Case cases[] = {
        {kSphere, 1, {nan, 20}, "a radius that is no number"},
        {kSphere, 1, {Bits(1), 2'000'000'000}, "too many segments"},
        {kSphere, 1, {Bits(1), 20, 0}, "more than is known"},
        {kSphere, 2, {}, "an unknown chunk"},
        {kCamera, 1, {3, 0, 0, 0}, "an unknown type of field of view"},
        {kMesh, 2, {1, 0, 0, 1, 0, 0}, "a face without vertices"},
        {kMesh, 4, {1, 0, 0, 0}, "a texture face without vertices"},
        {kMesh, 1, {0xFFFFFFFF, 0, 0, 0}, "fewer vertices than announced"},
        {kLine, 1, {0xFFFFFFFF, 0, 0, 0}, "fewer points than announced"},
        {kLine, 2, {2, 0}, "neither open nor closed"},
        {kLine, 2, {1, 1, 0, 0, 0}, "a knot without its handles"},
        {kBend, 1, {nan}, "a speed that is no number"},
        {kFloat, 1, {2, 12, 0, 0}, "another version"},
        {kFloat, 1, {1, 16, 0, 0}, "keys of another size"},
        {kTransform, 4, {1, 20, 0, 0}, "a part that no transform has"},
    };
    const std::vector<ReferenceTarget*> objects = OneOfEach();
    for (const Case& c : cases)
        EXPECT_EQ(headless::LoadBytes(Chunk(c.chunk, c.words), *objects[c.kind]), IO_ERROR)
            << c.why;
    for (ReferenceTarget* object : objects)
        object->DeleteMe();
}

TEST_F(StoredObjectsTest, ALengthIsBelievedOnlyAsFarAsItsLevelReaches) {
    Bytes bytes = Chunk(1, {7});
    bytes.pop_back();
    headless::LoadBytes(bytes, [](ILoad* load) {
        EXPECT_EQ(load->OpenChunk(), IO_ERROR);
        EXPECT_EQ(load->OpenChunk(), IO_END);
        return load->CloseChunk();
    });
}

TEST_F(StoredObjectsTest, KeysThatAreThereAreSortedAndOfEqualTimesTheLastStands) {
    Control* control = NewFloat();
    const Words keys{1,  12, 9,       Bits(9),  //
                     20, 0,  Bits(2),           //
                     10, 0,  Bits(1),           //
                     20, 1,  Bits(3),           //
                     0,  0,  Bits(0), 77};
    EXPECT_EQ(headless::LoadBytes(Chunk(1, keys), *control), IO_ERROR);
    ASSERT_EQ(control->NumKeys(), 3);
    EXPECT_EQ(control->GetKeyTime(1), 10);
    const auto get = [control](TimeValue t) {
        float value = 0;
        Interval valid = FOREVER;
        control->GetValue(t, &value, valid, CTRL_ABSOLUTE);
        return value;
    };
    EXPECT_EQ(get(20), 3.0f);
    EXPECT_EQ(get(-1), 9.0f);
    control->DeleteMe();
}

}  // namespace
