#include "player/perform.h"

#include <algorithm>
#include <array>
#include <exception>
#include <tuple>
#include <type_traits>

#include "foundation/thrown.h"
#include "recorder/stream/methods.h"
#include "recorder/stream/record_writer.h"

namespace player {
namespace {

using recorder::ExtensionValue;
using recorder::RecordWriter;
using recorder::RowOf;
using recorder::ValueReader;

// A call that is being made.
struct Making {
    ObjectId object;
    ValueReader said;
    LiveObjects& objects;
    const recorder::TapeSession& session;
    RecordWriter answer;
};

TVL::CMesh TakeMesh(Making& making) {
    const auto mesh = making.session.meshes.find(making.said.Word());
    if (mesh == making.session.meshes.end()) return {};
    ValueReader values(mesh->second);
    values.Word();
    return values.MeshContent();
}

// Values that are said, each by its type -------------------------------------------------------

template <class Type>
Type Take(Making& making) {
    ValueReader& said = making.said;
    if constexpr (std::is_same_v<Type, bool>)
        return said.Truth();
    else if constexpr (std::is_integral_v<Type>)
        return said.Whole();
    else if constexpr (std::is_floating_point_v<Type>)
        return static_cast<Type>(said.Number());
    else if constexpr (std::is_same_v<Type, std::string>)
        return std::string(said.Text());
    else if constexpr (std::is_same_v<Type, std::pair<double, double>>)
        return said.Pair();
    else if constexpr (std::is_same_v<Type, std::array<double, 3>>)
        return said.Vector();
    else if constexpr (std::is_same_v<Type, TVL::CMatrix4>)
        return said.Matrix();
    else if constexpr (std::is_same_v<Type, TVL::CMesh>)
        return TakeMesh(making);
    else if constexpr (std::is_same_v<Type, XMLNode>)
        return said.Tree();
    else if constexpr (std::is_same_v<Type, void*>)
        return nullptr;  // what is not said
    else if constexpr (std::is_same_v<Type, TVL::CNode*>)
        return making.objects.Find<TVL::CoreNode>(said.Object());
    else if constexpr (std::is_same_v<Type, TVL::NodeListener*>)
        return said.Object(), &making.objects.Listener();
    else
        return making.objects.Find<std::remove_pointer_t<Type>>(said.Object());
}

template <>
std::vector<TVL::CoreElement*> Take<std::vector<TVL::CoreElement*>>(Making& making) {
    std::vector<TVL::CoreElement*> owners;
    for (const ObjectId id : making.said.Objects())
        owners.push_back(making.objects.Find<TVL::CoreElement>(id));
    return owners;
}

// Values that are answered ---------------------------------------------------------------------

template <class Type>
void Give(Making& making, const Type& value) {
    if constexpr (std::is_same_v<Type, TVL::WindowHandle>)
        making.answer.Put(ObjectId{0});
    else if constexpr (std::is_pointer_v<Type>)
        making.answer.Put(making.objects.IdOf(value));
    else if constexpr (std::is_same_v<Type, TVL::CMesh>)
        making.answer.Put(recorder::IdOf(value));
    else
        making.answer.Put(value);
}

template <>
void Give(Making& making, const std::string& text) {
    making.answer.Put(std::string_view(text));
}

template <>
void Give(Making& making, const std::vector<TVL::CNode*>& nodes) {
    std::vector<ObjectId> ids;
    for (TVL::CNode* const node : nodes)
        ids.push_back(making.objects.IdOf(node));
    making.answer.Put(ids);
}

template <>
void Give(Making& making, const std::vector<int>& numbers) {
    std::string text;
    for (const int number : numbers)
        (text += text.empty() ? "" : " ") += std::to_string(number);
    making.answer.Put(std::string_view(text));
}

// Objects that calls are made on ---------------------------------------------------------------

template <class Class>
Class* Target(Making& making) {
    return making.objects.Find<Class>(making.object);
}

template <>
TVL::CNode* Target<TVL::CNode>(Making& making) {
    return Target<TVL::CoreNode>(making);
}

template <>
TVL::CExtendable* Target<TVL::CExtendable>(Making& making) {
    switch (recorder::KindOf(making.object)) {
        case ObjectKind::kNode:
            return Target<TVL::CoreNode>(making);
        case ObjectKind::kSnapshot:
            return Target<TVL::CSnapshot>(making);
        case ObjectKind::kHelperSnapshot:
            return Target<TVL::CSnapshot_Helper>(making);
        case ObjectKind::kLensSnapshot:
            return Target<TVL::CSnapshot_Lens>(making);
        case ObjectKind::kMeshSnapshot:
            return Target<TVL::CSnapshot_Mesh>(making);
        case ObjectKind::kShapeSnapshot:
            return Target<TVL::CSnapshot_Shape>(making);
        default:
            return nullptr;
    }
}

// Calls ----------------------------------------------------------------------------------------

template <class Class, class Result, class... Arguments>
bool Call(Making& making, Result (Class::*operation)(Arguments...)) {
    Class* const target = Target<Class>(making);
    if (!target) return false;
    std::tuple<std::decay_t<Arguments>...> said{Take<std::decay_t<Arguments>>(making)...};
    std::apply(
        [&](auto&... arguments) {
            if constexpr (std::is_void_v<Result>)
                (target->*operation)(std::move(arguments)...);
            else
                Give<std::decay_t<Result>>(making, (target->*operation)(std::move(arguments)...));
        },
        said);
    return true;
}

// False: there is no object to make it on.
using MakeCall = bool (*)(Making&);

template <auto kOperation>
bool Plain(Making& making) {
    return Call(making, kOperation);
}

// What it is given an object for stands in its id.
bool HandleExtension(Making& making) {
    auto* const target = Target<TVL::CExtendable>(making);
    const int extension = making.said.Whole();
    const char letter = making.said.Letter();
    const ExtensionValue argument{letter, letter == 0 ? 0 : making.said.Word(), nullptr};
    void* const pointer =
        letter == 'o' ? making.objects.Find<TVL::CoreNode>(argument.word) : nullptr;
    const std::intptr_t result = target ? target->HandleExtension(extension, pointer) : 0;
    ExtensionValue given{'i', static_cast<std::uint64_t>(result), nullptr};
    if (extension == TVL::kCloneBelow)
        given = {'o', making.objects.IdOf(reinterpret_cast<TVL::CoreNode*>(result)), nullptr};
    making.answer.Put(given);
    making.answer.Put(argument);
    return true;
}

bool Claim(Making& making) {
    auto* const target = Target<TVL::CoreNode>(making);
    if (!target) return false;
    auto* const owner = Take<TVL::CoreElement*>(making);
    TVL::CoreNode* const claimed = target->Claim(owner, Take<std::string>(making));
    if (claimed) claimed->SetListener(&making.objects.Listener());
    Give(making, claimed);
    return true;
}

// The snapshot is still known by the id that it has here.
template <auto kOperation>
bool Lend(Making& making) {
    if (!Plain<kOperation>(making)) return false;
    const ObjectId lent = ValueReader(making.answer.End()).Object();
    if (lent != 0) making.objects.Lend(lent, making.object);
    return true;
}

template <auto kOperation>
bool TakeBack(Making& making) {
    making.objects.TakeBack(ValueReader(making.said).Object());
    return Plain<kOperation>(making);
}

bool IntersectRay(Making& making) {
    auto* const mesh = Target<TVL::CSnapshot_Mesh>(making);
    if (!mesh) return false;
    const auto origin = making.said.Vector();
    const auto direction = making.said.Vector();
    const bool wantsDistance = making.said.Truth();
    const bool wantsNormal = making.said.Truth();
    double distance = 0;
    std::array<double, 3> normal{};
    making.answer.Put(mesh->IntersectRay(origin, direction, wantsDistance ? &distance : nullptr,
                                         wantsNormal ? &normal : nullptr));
    making.answer.Put(distance);
    making.answer.Put(normal);
    return true;
}

// What every node sends of itself comes of what is done to its links. One that takes its leave ends
// them afterwards, of which the tape tells.
bool Send(Making& making) {
    ValueReader& said = making.said;
    const ObjectId from = said.Object();
    TVL::Util::MessageNode* const sender = making.objects.FindMessageNode(from);
    TVL::Util::MessageNode* const target = making.objects.FindMessageNode(making.object);
    if ((from != 0 && !sender) || !target) return false;
    const std::int32_t id = said.Whole();
    const std::string text(said.Text());
    const bool isFarewell = id == TVL::Util::Message::kStopBroadcasting;
    TVL::Util::Message message(id, text, said.Whole(), isFarewell ? sender : nullptr);
    if (!sender)
        target->Receive(&message, said.Truth());
    else if (id == TVL::Util::Message::kListening)
        sender->Listen(target);
    else if (id == TVL::Util::Message::kStoppedListening)
        sender->StopListening(target);
    else if (said.Truth())
        sender->MessageNode::Broadcast(&message);
    else
        sender->Send(target, &message);
    return true;
}

// Fields of the contract.
struct NodeFields : TVL::CoreNode {
    using CoreNode::owner;
    using CoreNode::source;
};

// A real node stays in an undo record. A snapshot node on one of an owner's stays, too, unless it
// was reached from a node of that owner's.
bool IsKept(TVL::CoreNode& node, LiveObjects& objects) {
    if (!node.IsSnapshot()) return objects.Adaptor().IsHoldingUndo();
    const TVL::CoreElement* const owner = node.*&NodeFields::owner;
    TVL::CoreNode* const source = node.*&NodeFields::source;
    return owner && (!source || source->*&NodeFields::owner != owner);
}

// What such a call ends, to be known before it is made.
ObjectId EndedBy(const Record& call, LiveObjects& objects) {
    if (call.head.operation == Operation::CNode_ReleaseNode) return ValueReader(call).Object();
    if (call.head.operation == Operation::CoreNode_Destroy) return call.head.object;
    if (call.head.operation != Operation::CoreNode_Delete) return 0;
    auto* const node = objects.Find<TVL::CoreNode>(call.head.object);
    return !node || IsKept(*node, objects) ? 0 : call.head.object;
}

// Which operation is made how ------------------------------------------------------------------

template <class>
struct ClassOf;
template <class Class, class Type>
struct ClassOf<Type Class::*> {
    using type = Class;
};

// Null for what only the adaptor calls.
template <Operation kOperation>
constexpr MakeCall HowToMakeOne() {
    constexpr auto kMethod = recorder::kMethodOf<kOperation>;
    using Class = typename ClassOf<std::remove_const_t<decltype(kMethod)>>::type;
    constexpr std::string_view kName = RowOf(kOperation).name;
    constexpr bool kIsOfSnapshot =
        std::is_same_v<Class, TVL::CoreNode> && kName.ends_with("Snapshot");
    if constexpr (std::is_base_of_v<recorder::Routine, Class> ||
                  std::is_base_of_v<CoreInterface, Class> ||
                  std::is_base_of_v<TVL::NodeListener, Class> ||
                  std::is_base_of_v<TVL::CUndo, Class>)
        return nullptr;
    else if constexpr (std::is_same_v<Class, TVL::Util::MessageNode>)
        return &Send;
    else if constexpr (kOperation == Operation::CExtendable_HandleExtension)
        return &HandleExtension;
    else if constexpr (kOperation == Operation::CSnapshot_Mesh_IntersectRay)
        return &IntersectRay;
    else if constexpr (kOperation == Operation::CoreNode_Claim)
        return &Claim;
    else if constexpr (kIsOfSnapshot && kName.starts_with("Acquire"))
        return &Lend<kMethod>;
    else if constexpr (kIsOfSnapshot)
        return &TakeBack<kMethod>;
    else
        return &Plain<kMethod>;
}

#define PLAYER_ROW(Class, Name, Said, Answered) HowToMakeOne<Operation::Class##_##Name>(),
constexpr auto kMakeCalls = std::to_array<MakeCall>({RECORDER_OPERATIONS(PLAYER_ROW)});
#undef PLAYER_ROW

MakeCall HowToMake(const Record& call) {
    return kMakeCalls[static_cast<std::size_t>(call.head.operation)];
}

// The values of one with the letters, all of which are nothing.
void PutNothing(std::string_view letters, RecordWriter& answer) {
    for (const char letter : letters) {
        if (letter == 'p')
            answer.Put(std::pair<double, double>());
        else if (letter == 'v')
            answer.Put(std::array<double, 3>());
        else if (letter == 'm')
            answer.Put(TVL::CMatrix4::Zero());
        else if (letter == 't')
            answer.Put(XMLNode());
        else if (letter == 'g')
            answer.Put(recorder::IdOf({}));
        else
            answer.Put(ObjectId{0});
    }
}

bool MatchAll(std::span<const std::uint64_t> onTape, std::span<const std::uint64_t> here,
              LiveObjects& objects) {
    if (onTape.size() != here.size()) return false;
    for (std::size_t i = 0; i < onTape.size(); ++i)
        if (!objects.Match(onTape[i], here[i])) return false;
    return true;
}

bool MatchOne(char letter, std::span<const std::uint64_t> onTape,
              std::span<const std::uint64_t> here, LiveObjects& objects) {
    const bool isTaggedObject = letter == 'x' && onTape.size() == 2 && here.size() == 2 &&
                                onTape[0] == 'o' && here[0] == 'o';
    if (letter == 'w') return true;
    if (letter == 'o' || letter == 'O' || isTaggedObject) return MatchAll(onTape, here, objects);
    return std::ranges::equal(onTape, here);
}

}  // namespace

bool IsOfCore(const Record& call) {
    const ObjectKind kind = recorder::KindOf(call.head.object);
    return kind == ObjectKind::kAdaptor || kind == ObjectKind::kAdaptorMessageNode ||
           kind == ObjectKind::kNode || recorder::IsSnapshot(kind);
}

Performed Perform(const Record& call, LiveObjects& objects, const recorder::TapeSession& session) {
    Performed performed;
    const ObjectId ended = EndedBy(call, objects);
    Making making{call.head.object, ValueReader(call), objects, session, {}};
    const recorder::RecordHead head;
    making.answer.Begin(head);
    performed.thrown = TVL::ThrownBy([&] {
        const MakeCall make = HowToMake(call);
        if (!make || !make(making)) PutNothing(RowOf(call.head.operation).answered, making.answer);
    });
    objects.End(ended);
    const auto values = making.answer.End().values;
    performed.values.assign(values.begin(), values.end());
    return performed;
}

bool Match(std::string_view letters, std::span<const std::uint64_t> onTape,
           std::span<const std::uint64_t> here, LiveObjects& objects) {
    ValueReader expected(onTape);
    ValueReader came(here);
    const bool isMiss =
        letters == "bdv" && !onTape.empty() && !here.empty() && onTape[0] == 0 && here[0] == 0;
    if (isMiss) return true;
    for (const char letter : letters)
        if (!MatchOne(letter, expected.Skip(letter), came.Skip(letter), objects)) return false;
    return expected.IsGood() && came.IsGood();
}

}  // namespace player
