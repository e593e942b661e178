#include <algorithm>
#include <cstddef>
#include <limits>
#include <span>

#include "tvl/huffman_buffer.h"

namespace {

std::int32_t Sum(std::int32_t a, std::int32_t b) {
    using Limits = std::numeric_limits<std::int32_t>;
    const std::int64_t sum = std::int64_t{a} + b;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(sum, Limits::min(), Limits::max()));
}

// The first record at or after `from` that is more frequent, or the end.
std::size_t InsertionPoint(const std::vector<HuffmanRecord>& records, std::size_t from,
                           std::int32_t frequency) {
    while (from < records.size() && frequency >= records[from].frequency)
        ++from;
    return from;
}

// A record went in at `inserted`: what stood there or later is now one further on. Only records
// that were joined already refer to others.
void Renumber(std::span<HuffmanRecord> joined, std::int32_t inserted) {
    for (HuffmanRecord& record : joined)
        for (std::int32_t* const link : {&record.left, &record.right, &record.parent})
            if (*link >= inserted) ++*link;
}

// Joins the records at `pair` and behind it under a new one.
void Join(std::vector<HuffmanRecord>& records, std::size_t pair) {
    const std::int32_t sum = Sum(records[pair].frequency, records[pair + 1].frequency);
    const std::size_t place = InsertionPoint(records, pair + 2, sum);
    const auto left = static_cast<std::int32_t>(pair);
    const auto joint = static_cast<std::int32_t>(place);
    records.insert(records.begin() + joint, HuffmanRecord{left, left + 1, -1, sum, -1});
    Renumber(std::span(records).first(pair), joint);
    records[pair].parent = joint;
    records[pair + 1].parent = joint;
}

}  // namespace

void BuildHuffmanTree(std::vector<HuffmanRecord>& records) {
    for (HuffmanRecord& leaf : records)
        leaf.left = leaf.right = leaf.parent = -1;
    for (std::size_t pair = 0; pair + 1 < records.size(); pair += 2)
        Join(records, pair);
}
