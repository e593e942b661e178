#include "command/tape_print.h"

#include <algorithm>
#include <iomanip>
#include <iostream>
#include <sstream>

#include "command/long_work.h"
#include "command/output.h"
#include "command/tape_values.h"
#include "recorder/stream/notes.h"

namespace headless {
namespace {

using recorder::RecordKind;
using recorder::ValueReader;
using Json = nlohmann::ordered_json;

std::string ValuesText(const recorder::Record& record, const recorder::ObjectNames& names) {
    ValueReader values(record);
    std::string text;
    for (const char letter : recorder::LettersOf(record.head)) {
        const std::string value = ValueText(values, letter, names);
        text += (text.empty() || value.empty() ? "" : ", ") + value;
    }
    return text;
}

Json ValuesJson(const recorder::Record& record, const recorder::ObjectNames& names) {
    ValueReader values(record);
    Json list = Json::array();
    for (const char letter : recorder::LettersOf(record.head))
        list.push_back(ValueJson(values, letter, names));
    return list;
}

std::string MeshContentText(const recorder::Record& record) {
    ValueReader values(record);
    const std::string mesh = MeshText(values.Word());
    const TVL::CMesh content = values.MeshContent();
    return mesh + ": " + Counted(content.vertices.size(), "vertex", "vertices") + ", " +
           Counted(content.faces.size() / 3, "face");
}

// Of a scene that travels along its digest and its size.
std::string NoteText(const recorder::Record& record) {
    const auto [word, about] = recorder::NoteOf(record);
    std::string text(about);
    if (word == recorder::note::kScene) {
        const recorder::SceneTexts scene = recorder::SceneOf(about);
        text = std::string(scene.digest) + " of " + Counted(scene.rest.size(), "byte");
    }
    return "# " + InTable(std::string(word)) + ' ' + InTable(text);
}

Json FactsJson(const recorder::Record& record, const recorder::ObjectNames& names) {
    const recorder::ObjectFacts facts = ValueReader(record).Facts();
    return {{"object", recorder::ObjectNames::ByNumber(record.head.object)},
            {"name", std::string(facts.name)},
            {"hostName", std::string(facts.hostName)},
            {"of", facts.of == 0 ? Json(nullptr) : Json(names.NameOf(facts.of))}};
}

}  // namespace

recorder::TapeContents ReadTape(const std::string& tape, int status, recorder::MayBeBlank blank) {
    const auto progress = ProgressOn("Reading", tape);
    return OrRefuse([&] { return recorder::ReadTape(tape, blank, progress); }, status);
}

recorder::TapeContents ReadTapeOrRefuse(const std::string& tape, int status) {
    auto contents = ReadTape(tape, status, recorder::MayBeBlank::kNo);
    PrintEach(std::cerr, kComplaint, DamagesOf(contents));
    return contents;
}

std::vector<std::string> DamagesOf(const recorder::TapeContents& tape) {
    std::vector<std::string> lines;
    for (const std::string& damage : tape.damages)
        lines.push_back(tape.path + ": " + damage);
    return lines;
}

void Shorten(std::string& one, std::string& other) {
    constexpr std::size_t kBefore = 40;
    constexpr std::size_t kMost = 200;
    const auto parted = std::ranges::mismatch(one, other);
    const auto place = static_cast<std::size_t>(parted.in1 - one.begin());
    for (std::string* const text : {&one, &other}) {
        if (text->size() <= kMost) continue;
        const std::size_t begin = place > kBefore ? place - kBefore : 0;
        const bool isCut = begin + kMost < text->size();
        *text = (begin > 0 ? "..." : "") + text->substr(begin, kMost) + (isCut ? "..." : "");
    }
}

// Backwards first, so that what an answer gives has its name from the beginning.
SessionTeller::SessionTeller(const recorder::TapeSession& session) : session_(session) {
    const std::vector<recorder::Record>& records = session.records;
    for (auto record = records.rbegin(); record != records.rend(); ++record) {
        names_.Take(*record);
        if (record->IsEnd()) ends_[record->head.call] = &*record;
    }
}

void SessionTeller::GoTo(std::size_t place) {
    for (; next_ < place; ++next_)
        names_.Take(session_.records[next_]);
}

const recorder::Record* SessionTeller::EndOf(const recorder::Record& call) const {
    const auto end = ends_.find(call.head.call);
    return end == ends_.end() ? nullptr : end->second;
}

std::string SessionTeller::CallText(const recorder::Record& call) const {
    const recorder::OperationRow& row = recorder::RowOf(call.head.operation);
    std::string text =
        call.head.thread == 0 ? "" : "[thread " + std::to_string(int{call.head.thread}) + "] ";
    if (call.head.object != 0) text += InTable(names_.NameOf(call.head.object)) + '.';
    text += std::string(row.name) + '(' + ValuesText(call, names_) + ')';
    const recorder::Record* const end = EndOf(call);
    if (end == nullptr) return text + " was never answered";
    const std::string answer = ValuesText(*end, names_);
    if (end->head.kind == RecordKind::kThrown) return text + " threw " + answer;
    return answer.empty() ? text : text + " = " + answer;
}

std::string SessionTeller::Line(std::size_t place) const {
    const recorder::Record& record = session_.records[place];
    std::string text;
    if (record.head.kind == RecordKind::kCall) text = CallText(record);
    if (record.head.kind == RecordKind::kNote) text = NoteText(record);
    if (record.head.kind == RecordKind::kMesh) text = MeshContentText(record);
    if (text.empty()) return text;
    std::ostringstream line;
    line << std::setw(9) << recorder::InSeconds(record.head.milliseconds) << "  "
         << std::string(std::size_t{record.head.nesting} * 2, ' ') << text;
    return line.str();
}

Json SessionTeller::CallJson(const recorder::Record& call) const {
    const recorder::OperationRow& row = recorder::RowOf(call.head.operation);
    Json object = {{"operation", std::string(row.className) + "::" + std::string(row.name)},
                   {"object", recorder::ObjectNames::ByNumber(call.head.object)},
                   {"name", names_.NameOf(call.head.object)},
                   {"said", ValuesJson(call, names_)}};
    const recorder::Record* const end = EndOf(call);
    if (end != nullptr)
        object[end->head.kind == RecordKind::kThrown ? "thrown" : "answered"] =
            ValuesJson(*end, names_);
    return object;
}

Json SessionTeller::JsonOf(std::size_t place) const {
    const recorder::Record& record = session_.records[place];
    const recorder::RecordHead& head = record.head;
    Json object = {{"call", head.call},
                   {"seconds", head.milliseconds / 1000.0},
                   {"thread", head.thread},
                   {"nesting", head.nesting}};
    if (head.kind == RecordKind::kCall) object.update(CallJson(record));
    if (head.kind == RecordKind::kNote) object["note"] = ValuesJson(record, names_);
    if (head.kind == RecordKind::kMesh) object["mesh"] = MeshContentText(record);
    if (head.kind == RecordKind::kSession) object["session"] = ValuesJson(record, names_);
    if (head.kind == RecordKind::kObject) object["appears"] = FactsJson(record, names_);
    return record.IsEnd() ? Json() : object;
}

bool SessionTeller::Mentions(const recorder::Record& record, const std::string& node) const {
    ValueReader values(record);
    for (const char letter : recorder::LettersOf(record.head)) {
        ValueReader value(values.Skip(letter));
        if (letter != 'o' && letter != 'O') continue;
        for (const recorder::ObjectId object :
             letter == 'o' ? std::vector{value.Object()} : value.Objects())
            if (names_.NameOf(names_.NodeOf(object)) == node) return true;
    }
    return false;
}

bool SessionTeller::IsAbout(std::size_t place, const std::string& node) const {
    const recorder::Record& record = session_.records[place];
    if (record.head.kind != RecordKind::kCall) return false;
    if (names_.NameOf(names_.NodeOf(record.head.object)) == node) return true;
    const recorder::Record* const end = EndOf(record);
    return Mentions(record, node) || (end != nullptr && Mentions(*end, node));
}

}  // namespace headless
