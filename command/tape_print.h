#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <unordered_map>

#include "command/exit_status.h"
#include "recorder/tape/object_names.h"
#include "recorder/tape/read_tape.h"

// How what a tape holds is told.
namespace headless {

// A tape, or a refusal with that status. What was passed over on it is told as complaints; of one
// that may be blank it is not.
recorder::TapeContents ReadTapeOrRefuse(const std::string& tape, int status = kFailed);
recorder::TapeContents ReadTape(const std::string& tape, int status, recorder::MayBeBlank blank);
std::vector<std::string> DamagesOf(const recorder::TapeContents& tape);  // each with the file

// Of two long texts what is around the place where they part.
void Shorten(std::string& one, std::string& other);

// Tells the records of a session, in their order. A call is told together with how it ended.
class SessionTeller {
  public:
    explicit SessionTeller(const recorder::TapeSession& session);

    // Goes on to the record, past all before it.
    void GoTo(std::size_t place);

    // "2.310  Hand.AcquireSnapshot(0.033) = snapshot 7 of Hand", further to the right the more
    // calls it is in. Empty of what has no line of its own.
    std::string Line(std::size_t place) const;
    nlohmann::ordered_json JsonOf(std::size_t place) const;  // null likewise

    // Whether the call is on the node of that name, or on a snapshot of it, or says or answers it.
    bool IsAbout(std::size_t place, const std::string& node) const;

    const recorder::ObjectNames& Names() const { return names_; }

  private:
    const recorder::Record* EndOf(const recorder::Record& call) const;
    std::string CallText(const recorder::Record& call) const;
    nlohmann::ordered_json CallJson(const recorder::Record& call) const;
    bool Mentions(const recorder::Record& record, const std::string& node) const;

    const recorder::TapeSession& session_;
    recorder::ObjectNames names_;
    std::size_t next_ = 0;  // whose names are not taken yet
    std::unordered_map<std::uint64_t, const recorder::Record*> ends_;  // by the call's number
};

}  // namespace headless
