#include "plugin/descriptors.h"

#include <array>

#include "adaptor/panel.h"
#include "adaptor/utility_manager.h"
#include "controllers/scalar_control.h"
#include "controllers/transform_control.h"
#include "objects/custom_helper_object.h"
#include "tvl/panel.h"

namespace {

constexpr Class_ID kUtilityManagerClassId{0x5C9473F4, 0x7D2E4160};
constexpr Class_ID kUtilityObjClassId{0x7F8230EF, 0x2909190A};

class TarvoClassDesc : public ClassDesc {
  public:
    int IsPublic() override { return 1; }
    const char* Category() override { return "Tarvo Works Group"; }
};

// The one object that is there anyhow, at every call.
class UtilityClassDesc final : public TarvoClassDesc {
  public:
    void* Create(bool) override { return &UtilityManager::Get(); }
    const char* ClassName() override { return "Tarvo Lumiset"; }
    SClass_ID SuperClassID() override { return GUP_CLASS_ID; }
    Class_ID ClassID() override { return kUtilityManagerClassId; }
};

class UtilityObjClassDesc final : public TarvoClassDesc {
  public:
    void* Create(bool) override { return new TarvoUtilityObj; }
    const char* ClassName() override { return TVL::kPanelUtility; }
    SClass_ID SuperClassID() override { return UTILITY_CLASS_ID; }
    Class_ID ClassID() override { return kUtilityObjClassId; }
};

// Not for the host's creation lists: no one makes a guide object but by its class.
class HelperClassDesc final : public TarvoClassDesc {
  public:
    int IsPublic() override { return 0; }
    void* Create(bool) override { return new CustomHelperObject; }
    const char* ClassName() override { return "Tarvo Lumiset helper object"; }
    SClass_ID SuperClassID() override { return HELPER_CLASS_ID; }
    Class_ID ClassID() override { return kCustomHelperObjectClassId; }
};

class TransformControlClassDesc final : public TarvoClassDesc {
  public:
    void* Create(bool) override { return new TransformControl; }
    const char* ClassName() override { return "Tarvo Quillmark MoCap control"; }
    SClass_ID SuperClassID() override { return TransformControl::kSuperClassID; }
    Class_ID ClassID() override { return TransformControl::kClassID; }
};

class ScalarControlClassDesc final : public TarvoClassDesc {
  public:
    void* Create(bool) override { return new ScalarControl; }
    const char* ClassName() override { return "Tarvo Quillmark MoCap scalar control"; }
    SClass_ID SuperClassID() override { return ScalarControl::kSuperClassID; }
    Class_ID ClassID() override { return ScalarControl::kClassID; }
};

}  // namespace

ClassDesc* DescriptorAt(int index) {
    static UtilityClassDesc utility;
    static UtilityObjClassDesc utilityObj;
    static HelperClassDesc helper;
    static TransformControlClassDesc transformControl;
    static ScalarControlClassDesc scalarControl;
    static constexpr std::array<ClassDesc*, kDescriptorCount> kAll{
        &utility, &utilityObj, &helper, &transformControl, &scalarControl};
    if (index < 0 || index >= kDescriptorCount) return nullptr;
    return kAll[static_cast<std::size_t>(index)];
}
