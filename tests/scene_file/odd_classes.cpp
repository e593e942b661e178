#include "scene_file/odd_classes.h"

#include <stdexcept>

namespace odd {
namespace {

template <class Made>
class Descriptor final : public ClassDesc {
  public:
    Descriptor(const char* name, SClass_ID superClass, Class_ID id)
        : name_(name), superClass_(superClass), id_(id) {}
    int IsPublic() override { return 1; }
    void* Create(bool) override { return new Made; }
    const char* ClassName() override { return name_; }
    SClass_ID SuperClassID() override { return superClass_; }
    Class_ID ClassID() override { return id_; }
    const char* Category() override { return "Odd"; }

  private:
    const char* name_;
    SClass_ID superClass_;
    Class_ID id_;
};

}  // namespace

IOResult SaveText(ISave& save, const std::string& text) {
    if (saving == Manner::kThrowing) throw std::runtime_error("no mood");
    if (saving == Manner::kBadNesting) {
        for (int i = 0; i < 3; ++i)
            save.EndChunk();
        save.Write("raw", 3, nullptr);
    }
    save.BeginChunk(1);
    save.WriteCString(text.c_str());
    if (saving != Manner::kBadNesting) save.EndChunk();
    return saving == Manner::kFailing ? IO_ERROR : IO_OK;
}

IOResult LoadText(ILoad& load, std::string& text) {
    if (loading == Manner::kThrowing) throw std::runtime_error("no mood");
    if (load.OpenChunk() != IO_OK) return IO_ERROR;
    char* stored = nullptr;
    if (load.ReadCStringChunk(&stored) == IO_OK) text = stored;
    char beyond = 0;
    if (loading == Manner::kGreedy) load.Read(&beyond, sizeof beyond, nullptr);
    return loading == Manner::kFailing ? IO_ERROR : IO_OK;
}

void Register(headless::Session& session) {
    static Descriptor<Helper> helper("Odd helper", HELPER_CLASS_ID, kHelperId);
    static Descriptor<Transform> control("Odd control", CTRL_MATRIX3_CLASS_ID, kControlId);
    static Descriptor<Utility> utility("Odd utility", GUP_CLASS_ID, kUtilityId);
    for (ClassDesc* descriptor :
         {static_cast<ClassDesc*>(&helper), static_cast<ClassDesc*>(&control),
          static_cast<ClassDesc*>(&utility)})
        session.RegisterClass(descriptor);
}

}  // namespace odd
