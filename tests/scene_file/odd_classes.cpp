#include "tests/scene_file/odd_classes.h"

#include <stdexcept>

#include "tests/support/test_class.h"

namespace odd {

IOResult SaveText(ISave& save, std::uint16_t id, const std::string& text) {
    if (saving == 'n') {
        for (int i = 0; i < 3; ++i)
            save.EndChunk();
        save.Write("raw", 3, nullptr);
    }
    save.BeginChunk(id);
    save.WriteCString(text.c_str());
    if (saving != 'n') save.EndChunk();
    return saving == 'f' ? IO_ERROR : IO_OK;
}

IOResult LoadText(ILoad& load, std::string& text) {
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

IOResult Utility::Save(ISave* save) {
    for (const auto& [id, text] : written)
        if (SaveText(*save, id, text) != IO_OK) return IO_ERROR;
    return IO_OK;
}

IOResult Utility::Load(ILoad* load) {
    std::string ignored;
    return LoadText(*load, ignored);
}

void Register(headless::Session& session) {
    static TestClass helper("Odd helper", HELPER_CLASS_ID, kHelperId, [] { return new Helper; });
    static TestClass control("Odd control", CTRL_MATRIX3_CLASS_ID, kControlId,
                             [] { return new Transform; });
    static TestClass utility("Odd utility", GUP_CLASS_ID, {0x55, 0x56}, [] { return new Utility; });
    for (TestClass* type : {&helper, &control, &utility})
        session.RegisterClass(type);
}

}  // namespace odd
