#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "recorder/stream/record_writer.h"
#include "recorder/stream/stream.h"

// Rows of records of all kinds and operations, with values that mean nothing. One seed gives one
// row.
class RandomRecords {
  public:
    explicit RandomRecords(unsigned seed) : random_(seed) {}

    void Session(recorder::Sink& sink) {
        Give(sink, {.kind = recorder::RecordKind::kSession}, "sisss");
    }
    void Save(recorder::Sink& sink);
    void Some(recorder::Sink& sink, int count);
    void Large(recorder::Sink& sink, std::size_t bytes);  // a call with a text of so many

  private:
    void Give(recorder::Sink& sink, recorder::RecordHead head, std::string_view letters);
    void PutValue(char letter);
    std::string Text() {
        return std::string(random_() % 40, static_cast<char>('a' + random_() % 26));
    }

    std::mt19937 random_;
    std::uint64_t lastNumber_ = 0;
    recorder::RecordWriter writer_;
};

// Keeps a copy of each record, as its bytes.
struct Kept final : recorder::Sink {
    std::vector<std::string> records;
    void Take(const recorder::Record&, std::span<const std::byte> bytes) noexcept override {
        records.emplace_back(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    }
};

// Gives each record to two.
struct Both final : recorder::Sink {
    recorder::Sink& one;
    recorder::Sink& other;
    Both(recorder::Sink& first, recorder::Sink& second) : one(first), other(second) {}
    void Take(const recorder::Record& record, std::span<const std::byte> bytes) noexcept override {
        one.Take(record, bytes);
        other.Take(record, bytes);
    }
};
