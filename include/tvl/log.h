#pragma once

#include <cstdint>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>

#include "tvl/late_stream.h"
#include "tvl/singleton.h"

namespace TVL {

// The trace. One class plays three roles: the singleton holds the text and the verbosity limit; a
// local object fixes a level for a stretch of code; a scope object writes its message and indents
// all that is written while it lives. All write into the singleton, which may be one that the other
// side placed, and is looked up for each write:
//
//     TVL::Log log("creating helper", TVL::Log::kNotice);
//     log.WriteValue("name", name);
//
// A line is the date, a blank, the time (both UTC), " (", the word of the level, one tab more than
// the object's depth, the message, a newline: "20061204 09:05:00 (NOTICE): \tcreating helper".
// Nothing fails and nothing is thrown, so that destructors may write: a line for which there is no
// memory is missing. A message above the limit costs one comparison, and an object that writes
// nothing costs next to nothing; whoever builds a text asks IsLevelActive first. The order of
// virtual operations (Destroy, the destructor, Print, Write) and of fields is part of the contract.
class Log : public Util::Singleton<Log> {
  public:
    enum Level : std::int32_t {
        kOwnLevel = -1,  // any negative level: that of the object
        kCritical = 0,
        kError = 1,
        kWarning = 2,
        kNotice = 3,
        kTraffic = 4,  // of the message network, above the default limit; its lines have no word
    };

    // The role of the singleton: for GetInstance, and for a log that is to be placed.
    Log();

    // A local object: takes the depth of the moment and writes nothing.
    explicit Log(std::int32_t objectLevel);

    // A scope: one level deeper as long as it lives, whether or not its message is written.
    Log(std::string_view message, std::int32_t objectLevel);

    Log(const Log&) = delete;
    Log& operator=(const Log&) = delete;

    // Takes the scope's depth back, and ends its own file, if that is open, with a line "[EOF]".
    ~Log() override;

    // As Write.
    virtual std::int32_t Print(std::string_view message, std::int32_t messageLevel = kOwnLevel);

    // Appends a line if the level is within the limit. The result is 0 in every case.
    virtual std::int32_t Write(std::string_view message, std::int32_t messageLevel = kOwnLevel);

    // Appends the text as it is, whatever the limit.
    void WriteRaw(std::string_view text);

    // Writes "name: value". A pointer is written as an address.
    std::int32_t WriteValue(std::string_view name, std::string_view value,
                            std::int32_t messageLevel = kOwnLevel);
    std::int32_t WriteValue(std::string_view name, const char* value,
                            std::int32_t messageLevel = kOwnLevel);
    std::int32_t WriteValue(std::string_view name, std::int32_t value,
                            std::int32_t messageLevel = kOwnLevel);
    std::int32_t WriteValue(std::string_view name, const void* value,
                            std::int32_t messageLevel = kOwnLevel);

    // Whether a message of this level is written at present.
    bool IsLevelActive(std::int32_t messageLevel) const;

    // All that the singleton has taken in.
    std::string GetBufferedText() const;

    // Whoever places a log may open the file first; it is written to while it is open. The buffer
    // has all text so far, and only the singleton's is filled. In a log for that role both streams
    // are made at once, so that every other side finds them; local objects and scopes, of which
    // there are many, do without.
    Util::LateStream<std::ofstream> file;
    Util::LateStream<std::stringstream> buffer;
    std::int32_t depthHeld = 0;  // what this object added to the singleton's depth: 1 for a scope
    std::int32_t indent = -1;    // the singleton's: the depth of the moment, -1 outside all scopes;
                                 // others': the depth at construction
    std::int32_t level = kNotice;  // the singleton's: the limit; others': their level
};

}  // namespace TVL
