#pragma once

#include <string>
#include <vector>

#include "headless/session.h"
#include "host/class_desc.h"
#include "host/control.h"
#include "host/gup.h"
#include "host/object.h"

// Classes that one session knows and the next one does not.
namespace odd {

inline constexpr Class_ID kHelperId{0x51, 0x52};
inline constexpr Class_ID kControlId{0x53, 0x54};
inline constexpr Class_ID kUtilityId{0x55, 0x56};

// What all of them do when they are saved and loaded; the greedy read more than there is.
enum class Manner { kGood, kBadNesting, kFailing, kThrowing, kGreedy };
inline Manner saving = Manner::kGood;
inline Manner loading = Manner::kGood;

IOResult SaveText(ISave& save, const std::string& text);
IOResult LoadText(ILoad& load, std::string& text);

// Has a text, and refers to whatever it is made to refer to.
template <class Base>
class Thing : public Base {
  public:
    std::string text = "as made";

    void DeleteThis() override { delete this; }
    IOResult Save(ISave* save) override { return SaveText(*save, text); }
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

class Utility final : public GUP {
  public:
    static inline std::string text;

    std::uint32_t Start() override { return GUPRESULT_KEEP; }
    void Stop() override {}
    void DeleteThis() override { delete this; }
    IOResult Save(ISave* save) override { return text.empty() ? IO_OK : SaveText(*save, text); }
    IOResult Load(ILoad* load) override { return LoadText(*load, text); }
};

// Makes all three known.
void Register(headless::Session& session);

}  // namespace odd
