#include "recorder/proxies/scribe.h"

namespace recorder {

ObjectId Scribe::IdOf(ObjectKind kind, const void* object) {
    if (!object) return 0;
    ObjectId id = 0;
    try {
        const std::lock_guard lock(mutex_);
        ObjectId& known = known_[{kind, object}];
        if (known != 0) return known;
        id = known = NewId(kind);
    } catch (...) {  // no memory: it is another one each time
        id = NewId(kind);
    }
    Know(id, {});
    return id;
}

void Scribe::TellObjects(const TapeWriter::TellObject& tell) const {
    const std::lock_guard lock(mutex_);
    for (const auto& [object, id] : known_)
        tell(id, {});
}

std::string Scribe::TextOf(const std::vector<int>& numbers) noexcept try {
    std::string text;
    for (const int number : numbers)
        text += (text.empty() ? "" : " ") + std::to_string(number);
    return text;
} catch (...) {
    return {};
}

}  // namespace recorder
