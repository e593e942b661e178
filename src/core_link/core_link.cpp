#include "core_link/core_link.h"

#include "core_link/trace_file.h"

void AfterThrow(const char* name, std::string_view words, const CoreBrackets& before) noexcept {
    TVL::TraceThrown(name, words);
    TVL::TraceIfThrown("the end of what it left open", [&] { EndBracketsSince(before); });
    WriteTrace();
}

bool IsCoreRunning() {
    CoreInterface* const core = AttachedCore();
    return core && CallCore("IsCoreRunning", false, [&] { return core->IsCoreRunning(); });
}

bool CoreOption(int option, bool preset) {
    bool value = preset;
    CoreInterface* const core = AttachedCore();
    if (!core) return value;
    const bool isAnswered =
        CallCore("GetOptionValue", [&] { core->GetOptionValue(option, &value); });
    return isAnswered ? value : preset;
}

std::string PluginNameOf(const TVL::CoreElement* owner) {
    std::string name;
    if (!owner || !owner->plugin) return name;
    CallCore("the plug-in record", [&] { name = owner->plugin->name; });
    return name;
}
