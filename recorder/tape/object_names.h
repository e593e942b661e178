#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "recorder/stream/record_reader.h"

namespace recorder {

// What the objects of a session are called, as its records tell: by their names, else by their kind
// and number. A snapshot is called after its node. Each record is taken in its order.
class ObjectNames {
  public:
    void Take(const Record& record);

    std::string NameOf(ObjectId object) const;
    static std::string ByNumber(ObjectId object);  // its kind and number

    // The node itself, or that of a snapshot; else the object.
    ObjectId NodeOf(ObjectId object) const;

  private:
    void TakeFacts(const Record& record);
    void TakeAnswer(const Record& record);

    std::unordered_map<ObjectId, std::string> names_;
    std::unordered_map<ObjectId, ObjectId> nodes_;  // of snapshots
};

}  // namespace recorder
