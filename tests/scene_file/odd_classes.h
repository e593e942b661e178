#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "headless/session.h"
#include "host/control.h"
#include "host/gup.h"
#include "host/object.h"

// Classes that one session knows and the next one does not.
namespace odd {

inline constexpr Class_ID kHelperId{0x51, 0x52};
inline constexpr Class_ID kControlId{0x53, 0x54};

// How all of them are saved: g well, n badly nested, f not at all.
inline char saving = 'g';

// What all of them do when they are loaded, to each of their chunks in turn: r reads it, p reads a
// part of it, b reads on beyond its end, s skips it, o reads it and ends without closing it; f
// fails and t throws within it, x fails before it.
inline std::string loading = "r";

IOResult SaveText(ISave& save, std::uint16_t id, const std::string& text);
IOResult LoadText(ILoad& load, std::string& text);

// Has a text, and refers to whatever it is made to refer to.
template <class Base>
class Thing : public Base {
  public:
    std::string text = "as made";

    void DeleteThis() override { delete this; }
    IOResult Save(ISave* save) override { return SaveText(*save, 1, text); }
    IOResult Load(ILoad* load) override { return LoadText(*load, text); }
    int NumRefs() override { return 2; }
    RefTargetHandle GetReference(int index) override { return references_[index]; }
    void SetReference(int index, RefTargetHandle target) override { references_[index] = target; }

  private:
    RefTargetHandle references_[2] = {};
};

class Helper final : public Thing<HelperObject> {
  public:
    Class_ID ClassID() override { return kHelperId; }
    void GetClassName(HostString& name) override { name = "Odd helper"; }
};

class Transform final : public Thing<Control> {
  public:
    SClass_ID SuperClassID() override { return CTRL_MATRIX3_CLASS_ID; }
    Class_ID ClassID() override { return kControlId; }
    void GetClassName(HostString& name) override { name = "Odd control"; }
    void GetValue(TimeValue, void*, Interval&, GetSetMethod) override {}
    void SetValue(TimeValue, void*, int, GetSetMethod) override {}
};

using Chunks = std::vector<std::pair<std::uint16_t, std::string>>;

class Utility final : public GUP {
  public:
    static inline Chunks written;

    std::uint32_t Start() override { return GUPRESULT_KEEP; }
    void Stop() override {}
    void DeleteThis() override { delete this; }
    IOResult Save(ISave* save) override;
    IOResult Load(ILoad* load) override;
};

// Makes all three known.
void Register(headless::Session& session);

}  // namespace odd
