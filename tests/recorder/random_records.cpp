#include "tests/recorder/random_records.h"

#include "recorder/stream/notes.h"
#include "recorder/stream/record_reader.h"

using namespace recorder;

namespace {

XMLNode RandomTree(std::mt19937& random, int depth) {
    XMLNode node;
    node.name = "element" + std::to_string(random() % 5);
    node.attributes["key"] = std::string(random() % 20, 'v');
    for (unsigned i = 0; depth > 0 && i < random() % 4; ++i)
        node.children.push_back(std::make_unique<XMLNode>(RandomTree(random, depth - 1)));
    return node;
}

}  // namespace

void RandomRecords::PutValue(char letter) {
    const auto word = [this] { return std::uint64_t{random_()} << 32 | random_(); };
    const auto number = [this] { return static_cast<double>(random_()); };
    switch (letter) {
        case 'b':
            return writer_.Put(random_() % 2 == 0);
        case 'i':
            return writer_.Put(static_cast<std::int32_t>(random_()));
        case 'd':
            return writer_.Put(number());
        case 's':
            return writer_.Put(std::string_view(Text()));
        case 'p':
            return writer_.Put(std::pair(number(), number()));
        case 'v':
            return writer_.Put(std::array{number(), number(), number()});
        case 'm':
            return writer_.Put(TVL::CMatrix4::Zero());
        case 'O':
            return writer_.Put(std::vector<ObjectId>(random_() % 9, word()));
        case 't':
            return writer_.Put(RandomTree(random_, 3));
        case 'x':
            return writer_.Put(ExtensionValue{.letter = 'i', .word = word()});
        default:
            return writer_.Put(word());
    }
}

void RandomRecords::Give(Sink& sink, RecordHead head, std::string_view letters) {
    head.call = ++lastNumber_;
    writer_.Begin(head);
    for (const char letter : letters)
        PutValue(letter);
    const Record record = writer_.End();
    sink.Take(record, writer_.Bytes());
}

void RandomRecords::Save(Sink& sink) {
    writer_.Begin({.call = ++lastNumber_, .kind = RecordKind::kNote});
    writer_.Put(std::string_view(note::kSaved));
    writer_.Put(std::string_view("0123456789abcdef /tmp/walk.scene"));
    const Record record = writer_.End();
    sink.Take(record, writer_.Bytes());
}

// But for the answer to `detach`, which would end the session.
void RandomRecords::Some(Sink& sink, int count) {
    for (int i = 0; i < count; ++i) {
        const auto operation = static_cast<Operation>(2 + random_() % (kOperations.size() - 2));
        RecordHead head{.object = random_(), .kind = RecordKind::kCall, .operation = operation};
        const auto choice = random_() % 100;
        if (choice >= 40) head.kind = RecordKind::kAnswer;
        if (choice >= 90) head = {.object = random_(), .kind = RecordKind::kObject};
        if (choice >= 95) head = {.kind = RecordKind::kNote};
        Give(sink, head, LettersOf(head));
    }
}

void RandomRecords::Large(Sink& sink, std::size_t bytes) {
    writer_.Begin({.call = ++lastNumber_,
                   .kind = RecordKind::kCall,
                   .operation = Operation::AdaptorInterface_FindNode});
    writer_.Put(ObjectId{random_()});
    writer_.Put(std::string_view(std::string(bytes, static_cast<char>('a' + random_() % 26))));
    const Record record = writer_.End();
    sink.Take(record, writer_.Bytes());
}
