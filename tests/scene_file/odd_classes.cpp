#include "tests/scene_file/odd_classes.h"

#include <stdexcept>

#include "tests/support/test_class.h"

namespace odd {
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
    static TestClass helper("Odd helper", HELPER_CLASS_ID, kHelperId, [] { return new Helper; });
    static TestClass control("Odd control", CTRL_MATRIX3_CLASS_ID, kControlId,
                             [] { return new Transform; });
    static TestClass utility("Odd utility", GUP_CLASS_ID, kUtilityId, [] { return new Utility; });
    for (TestClass* type : {&helper, &control, &utility})
        session.RegisterClass(type);
}

}  // namespace odd
