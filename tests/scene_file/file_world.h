#pragma once

#include <gtest/gtest.h>

#include "headless/primitives.h"
#include "headless/scene_view.h"
#include "headless/session.h"
#include "host/gup.h"
#include "tests/support/folder/temporary_folder.h"

// Classes that one session knows and the next one does not.
namespace odd {

// How all of them are saved: g well, n badly nested, f not at all.
inline char saving = 'g';

// What all of them do when they are loaded, to each of their chunks in turn: r reads it, p reads a
// part of it, b reads on beyond its end, s skips it, o reads it and ends without closing it; f
// fails and t throws within it, x fails before it.
inline std::string loading = "r";

// What the utility saves, by chunk.
using Chunks = std::vector<std::pair<std::uint16_t, std::string>>;
inline Chunks written;

IOResult SaveText(ISave& save, std::uint16_t id, const std::string& text);
IOResult LoadText(ILoad& load, std::string& text);

// Has a text, and refers to whatever it is made to refer to.
template <class Base>
struct Thing : Base {
    std::string text = "as made";

    void DeleteThis() override { delete this; }
    IOResult Save(ISave* save) override { return SaveText(*save, 1, text); }
    IOResult Load(ILoad* load) override { return LoadText(*load, text); }
    int NumRefs() override { return 2; }
    RefTargetHandle GetReference(int index) override { return references[index]; }
    void SetReference(int index, RefTargetHandle target) override { references[index] = target; }

    RefTargetHandle references[2] = {};
};

struct Helper final : Thing<HelperObject> {
    Class_ID ClassID() override { return {0x51, 0x52}; }
    void GetClassName(HostString& name) override { name = "Odd helper"; }
};

struct Transform final : Thing<Control> {
    SClass_ID SuperClassID() override { return CTRL_MATRIX3_CLASS_ID; }
    Class_ID ClassID() override { return {0x53, 0x54}; }
    void GetClassName(HostString& name) override { name = "Odd control"; }
    void GetValue(TimeValue, void*, Interval&, GetSetMethod) override {}
    void SetValue(TimeValue, void*, int, GetSetMethod) override {}
};

}  // namespace odd

// A folder, and a host in it that comes and goes.
class FileWorld : public testing::Test {
  protected:
    FileWorld() {
        odd::written = {{1, "of the utility"}};
        odd::saving = 'g';
        odd::loading = "r";
    }
    ~FileWorld() override { End(); }

    void Start(bool isKnowing, const headless::SessionSettings& settings = {});
    void End();

    std::string File(const std::string& name) const { return folder.File(name); }

    // The scene that is there, saved; its bytes.
    std::string Save(const std::string& name) {
        EXPECT_EQ(host->SaveScene(File(name)).error, "");
        return ReadFile(File(name));
    }

    // What did not load, a line each.
    std::vector<std::string> Open(const std::string& name) {
        const headless::FileOutcome outcome = host->OpenScene(File(name));
        EXPECT_EQ(outcome.error, "");
        return outcome.complaints;
    }

    INode* Add(const char* name, Object* object, INode* parent = nullptr);

    // In the file "built": nodes of every kind of object and controller, odd ones among them, with
    // everything that a scene file keeps.
    std::string SaveBuilt();

    const TemporaryFolder folder;
    std::unique_ptr<headless::Session> host;
};
