#include "headless/core_seat.h"

#include <charconv>
#include <filesystem>
#include <stdexcept>
#include <string_view>
#include <system_error>

#include "foundation/thrown.h"
#include "platform/files.h"
#include "platform/modules.h"
#include "platform/narrow_path.h"
#include "platform/registry.h"
#include "seat/find_core.h"
#include "seat/seated_core.h"
#include "tvl/ids.h"
#include "tvl/installation.h"
#include "tvl/message.h"
#include "tvl/xml_node.h"

namespace headless {

namespace {

// By its bare name the system would look for a library in folders of its own.
FoundPath Whole(const std::string& library) {
    std::error_code error;
    const std::string path =
        platform::ToNarrow(std::filesystem::absolute(platform::FromNarrow(library), error));
    if (path.empty()) return {{}, library + ": the path cannot be told in whole"};
    return {path, {}};
}

OptionView ReadOption(const XMLNode& element) {
    const std::string& id = element.Child("id").Text();
    OptionView option;
    option.name = element.Child("name").Text();
    option.isButton = element.name == "button";
    std::from_chars(id.data(), id.data() + id.size(), option.id);
    return option;
}

// Options stand at any depth of the panel, one in an element "check" or "button".
void CollectOptions(const XMLNode& element, std::vector<OptionView>& options) {
    for (const auto& child : element.children) {
        const bool isOption = child->name == "check" || child->name == "button";
        if (isOption) options.push_back(ReadOption(*child));
        if (!isOption) CollectOptions(*child, options);
    }
}

// A switch that the Core does not know keeps whatever it was. An exception is the answer of a Core
// that knows nothing of the option.
void AskCore(CoreInterface& core, OptionView& option) try {
    if (option.isButton) {
        option.isKnown = core.GetOptionNode(option.id, 0) != nullptr;
        return;
    }
    bool isOff = false;
    bool isOn = true;
    core.GetOptionValue(option.id, &isOff);
    core.GetOptionValue(option.id, &isOn);
    option.isKnown = isOff == isOn;
    if (option.isKnown) option.value = isOn;
} catch (...) {
    option.isKnown = false;
}

// Why nobody can sit there; empty if somebody can.
std::string WhyEmpty(const FoundPath& core, const FoundPath& seat) {
    if (!core.whyNot.empty()) return core.whyNot;
    if (!seat.whyNot.empty()) return seat.whyNot;
    if (!platform::AreSameFile(core.path, SeatModule(seat.path))) return {};
    return core.path + " is the seat itself, which no Core sits on";
}

}  // namespace

struct CoreSeat::State {
    std::string library;
    std::string seatFolder;
    std::string whyEmpty;

    static State Of(const std::string& library) {
        const FoundPath core = library.empty() ? FindInstalledCore() : Whole(library);
        const FoundPath seat = FindSeatFolder();
        return {core.path, seat.path, WhyEmpty(core, seat)};
    }

    void Sit(CoreBetween* between, bool isInPlace) const {
        if (!whyEmpty.empty()) return;
        SeatedCore::Get().Take(isInPlace ? "this program's own Core" : library, between, isInPlace);
        platform::LayOverRegistry(
            platform::RegistryText{std::string("HKEY_LOCAL_MACHINE\\") + TVL::kInstallKey,
                                   TVL::kInstallValue, seatFolder});
    }
};

CoreSeat::CoreSeat(const std::string& library)
    : state_(std::make_unique<State>(State::Of(library))) {
    state_->Sit(nullptr, false);
}

CoreSeat::CoreSeat(const std::string& library, CoreBetween& between)
    : state_(std::make_unique<State>(State::Of(library))) {
    state_->Sit(&between, false);
}

CoreSeat::CoreSeat(CoreBetween& inPlace) {
    const FoundPath seat = FindSeatFolder();
    state_ = std::make_unique<State>(State{{}, seat.path, seat.whyNot});
    state_->Sit(&inPlace, true);
}

CoreSeat::~CoreSeat() {
    platform::LayOverRegistry(std::nullopt);
    SeatedCore::Get().Take({});
}

const std::string& CoreSeat::Library() const {
    return state_->library;
}

bool CoreSeat::IsAttached() const {
    return SeatedCore::Get().Core() != nullptr;
}

std::string CoreSeat::WhyAbsent() const {
    return state_->whyEmpty.empty() ? SeatedCore::Get().WhyAbsent() : state_->whyEmpty;
}

std::vector<OptionView> CoreSeat::Options() const {
    std::vector<OptionView> options;
    const SeatedCore& seated = SeatedCore::Get();
    if (!seated.Core()) return options;
    CollectOptions(seated.Adaptor()->GetOptionsPanel(), options);
    for (OptionView& option : options)
        if (seated.Core()) AskCore(*seated.Core(), option);
    return options;
}

bool CoreSeat::Press(int option) {
    CoreInterface* const core = SeatedCore::Get().Core();
    bool isHeard = false;
    const auto thrown = TVL::ThrownBy([&] {
        TVL::Util::MessageNode* const node = core ? core->GetOptionNode(option, 0) : nullptr;
        if (!node || node->GetListenerCount() == 0) return;
        isHeard = true;
        TVL::Util::Message message(TVL::kButtonPressed, "pressed from the seat");
        node->Broadcast(&message);
    });
    if (thrown) throw std::runtime_error("the Core threw: " + *thrown);
    return isHeard;
}

bool CoreSeat::Press(std::string_view name) {
    for (const OptionView& option : Options())
        if (option.isButton && option.name == name) return Press(option.id);
    return false;
}

// A null log places nothing, and the trace is written around it as around any other.
void CoreSeat::WriteTrace() {
    const SeatedCore& seated = SeatedCore::Get();
    if (seated.Core()) seated.Adaptor()->SetLog(nullptr);
}

}  // namespace headless
