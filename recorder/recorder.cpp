#include "recorder/recorder.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <vector>

#include "recorder/proxies/adaptor_proxy.h"
#include "recorder/proxies/core_proxy.h"

namespace recorder {
namespace {

#if defined(_WIN32)
constexpr std::string_view kPlatform = "Windows";
#else
constexpr std::string_view kPlatform = "Linux";
#endif
constexpr std::string_view kThisRecorder = "Lumiset flight recorder " LUMISET_VERSION;

// UTC.
std::string Now() {
    const std::time_t now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
    std::tm parts{};
#if defined(_WIN32)
    gmtime_s(&parts, &now);
#else
    gmtime_r(&now, &parts);
#endif
    char text[32];
    return {text, std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &parts)};
}

}  // namespace

// A Core can leave, and another one come, inside a call that the adaptor or the Core has made, so a
// boundary is there until all its calls have returned; and until the next Core comes, since the
// adaptor lets go of a Core's objects when that has left. One that has not left keeps its own, also
// if another attachment has begun, which is told from there on in its place.
struct Recorder::State {
    // All that both sides are shown of each other in one attachment.
    struct Boundary {
        Boundary(Stream& stream, TVL::AdaptorInterface& real)
            : scribe(stream), adaptor(scribe, owners, nodes, real) {}

        Scribe scribe;
        Owners owners{scribe};
        Nodes nodes{scribe, owners};
        MessageNet messages{scribe};
        AdaptorProxy adaptor;
        CoreProxy core{scribe, messages, nodes};
    };

    Stream& stream;
    std::string coreName;
    std::vector<std::unique_ptr<Boundary>> boundaries;
    Boundary* present = nullptr;  // the last one of these

    // Without memory for one there is none, and the Core works without.
    void Begin(TVL::AdaptorInterface& adaptor) noexcept try {
        for (const auto& past : boundaries)
            past->scribe.Close();
        present = nullptr;
        std::erase_if(boundaries, [](const auto& past) {
            return past->scribe.IsIdle() && !past->core.Behind();
        });
        const std::string now = Now();
        present = boundaries.emplace_back(std::make_unique<Boundary>(stream, adaptor)).get();
        stream.BeginSession({now, TVL::kInterfaceVersion, kPlatform, coreName, kThisRecorder});
    } catch (...) {
    }
};

Recorder::Recorder(Stream& stream, std::string core)
    : state_(new State{stream, std::move(core), {}, nullptr}) {}

Recorder::~Recorder() = default;

// Here and below: the adaptor ends the nodes of a Core that has refused or left as soon as it
// learns of that.
CoreInterface* Recorder::Attach(TVL::AdaptorInterface* adaptor, const AttachCore& attach) {
    state_->Begin(*adaptor);
    if (!state_->present) return attach(adaptor);
    State::Boundary& boundary = *state_->present;
    const AtEnd letGo([&] {
        if (!boundary.core.Behind()) boundary.nodes.LetGo();
    });
    const auto make = [&]() -> CoreProxy* {
        boundary.core.StandFor(attach(&boundary.adaptor));
        return boundary.core.Behind() ? &boundary.core : nullptr;
    };
    return boundary.scribe.Record<Operation::Routine_attach>(0, make, &boundary.adaptor);
}

void Recorder::Detach(CoreInterface* core, const DetachCore& detach) {
    const auto place = std::ranges::find(
        state_->boundaries, core, [](const auto& each) -> CoreInterface* { return &each->core; });
    if (place == state_->boundaries.end()) return detach(core);
    State::Boundary& boundary = **place;
    const AtEnd letGo([&] {
        boundary.nodes.LetGo();
        boundary.core.StandFor(nullptr);
    });
    const CoreProxy* const proxy = &boundary.core;
    boundary.nodes.TellListeners();
    boundary.scribe.Record<Operation::Routine_detach>(
        0, [&] { detach(proxy->Behind()); }, proxy);
}

void Recorder::TellObjects(const TapeWriter::TellObject& tell) const {
    if (!state_->present) return;
    const State::Boundary& boundary = *state_->present;
    tell(boundary.adaptor.Id(), {});
    if (boundary.core.Behind()) tell(boundary.core.Id(), {});
    boundary.scribe.TellObjects(tell);
    boundary.owners.TellObjects(tell);
    boundary.nodes.TellObjects(tell);
    boundary.messages.TellObjects(tell);
}

}  // namespace recorder
