#include <bit>
#include <limits>
#include <tuple>
#include <vector>

#include "headless/copies.h"
#include "headless/memory_chunks.h"
#include "host/animate.h"
#include "tests/headless/host_world.h"

namespace {

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

    // What holds keys has a value at rest, too, and more of them than are read at once.
    std::vector<ReferenceTarget*> OneOfEach() {
        Control* number = NewFloat();
        Control* transform = NewTransform();
        for (TimeValue t = -1; t < 2100; ++t) {
            if (t == 0) AnimateOn();
            auto value = static_cast<float>(t) / 3;
            number->SetValue(t, &value, 1, CTRL_ABSOLUTE);
            SetXFormPacket packet;
            packet.tmAxis.SetTranslate({1, 2, value});
            transform->SetValue(t, &packet, 1, CTRL_ABSOLUTE);
        }
        AnimateOff();
        CameraObject* camera = host.CreateCameraObject(0);
        camera->SetFOVType(2);
        camera->SetConeState(1);
        return {number,
                transform,
                camera,
                headless::NewGround(2, 2),
                headless::NewSplines({headless::StraightLines({{1, 2, 3}, {4, 5, 6}}),
                                      {{{{}, {1, 2, 3}, {4, 5, 6}}}, true}}),
                headless::NewSphere(2, 20),
                headless::NewBend(headless::NewGround(1, 1), 45)};
    }
    enum Kind { kFloat, kTransform, kCamera, kMesh, kLine, kSphere, kBend };

    const std::vector<ReferenceTarget*> objects = OneOfEach();
};

TEST_F(StoredObjectsTest, WhatIsCopiedOrStoredComesBackOverWhateverWasThere) {
    for (ReferenceTarget* object : objects) {
        const Bytes bytes = headless::SavedBytes(*object);
        ReferenceTarget* copy = headless::CopyOf(*object);
        EXPECT_EQ(headless::SavedBytes(*copy), bytes);
        auto* empty = static_cast<ReferenceTarget*>(static_cast<Animatable*>(
            host.CreateInstance(object->SuperClassID(), object->ClassID())));
        const Bytes fresh = headless::SavedBytes(*empty);
        EXPECT_EQ(headless::LoadBytes(bytes, *empty), IO_OK);
        EXPECT_EQ(headless::SavedBytes(*empty), bytes);
        EXPECT_EQ(headless::LoadBytes(fresh, *copy), IO_OK);
        EXPECT_EQ(headless::SavedBytes(*copy), fresh);
        EXPECT_EQ(headless::SavedBytes(*object), bytes) << "the copy shares with its original";
        copy->DeleteMe();
        empty->DeleteMe();
    }
}

TEST_F(StoredObjectsTest, NonsenseIsRefused) {
    const std::uint32_t nan = Bits(std::numeric_limits<float>::quiet_NaN());
    const std::tuple<Kind, std::uint16_t, Words, const char*> cases[] = {
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
    for (const auto& [kind, chunk, words, why] : cases)
        EXPECT_EQ(headless::LoadBytes(Chunk(chunk, words), *objects[kind]), IO_ERROR) << why;

    // A length is believed only as far as its level reaches.
    Bytes bytes = Chunk(1, {7});
    bytes.pop_back();
    headless::LoadBytes(bytes, [](ILoad* load) {
        EXPECT_EQ(load->OpenChunk(), IO_ERROR);
        EXPECT_EQ(load->OpenChunk(), IO_END);
        return load->CloseChunk();
    });
}

TEST_F(StoredObjectsTest, KeysThatAreThereAreSortedAndOfEqualTimesTheLastStands) {
    ReferenceTarget& control = *objects[kFloat];
    const Words keys{1,  12, 9,       Bits(9),  // of which four and a part are there
                     20, 0,  Bits(2),           //
                     10, 0,  Bits(1),           //
                     20, 1,  Bits(3),           //
                     0,  0,  Bits(0), 77};
    const Words sorted{1, 12, 3, Bits(9), 0, 0, Bits(0), 10, 0, Bits(1), 20, 1, Bits(3)};
    EXPECT_EQ(headless::LoadBytes(Chunk(1, keys), control), IO_ERROR);
    EXPECT_EQ(headless::SavedBytes(control), Chunk(1, sorted));
}

}  // namespace
