// Huffman codes alone, packed and read by zlib: raw streams, since ours have no checksum either.

#include <zlib.h>

#include <memory>

#include "bench/texts.h"

namespace {

constexpr int kRaw = -MAX_WBITS;

std::string Packed(const std::string& plain) {
    z_stream stream{};
    deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kRaw, MAX_MEM_LEVEL, Z_HUFFMAN_ONLY);
    std::string packed(deflateBound(&stream, plain.size()), '\0');
    stream.next_in = const_cast<Bytef*>(BytesOf(plain));
    stream.avail_in = static_cast<uInt>(plain.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    deflate(&stream, Z_FINISH);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

using Block = std::unique_ptr<Bytef[]>;

Block Unpacked(const std::string& packed, std::size_t size) {
    Block plain = std::make_unique_for_overwrite<Bytef[]>(size);
    z_stream stream{};
    inflateInit2(&stream, kRaw);
    stream.next_in = const_cast<Bytef*>(BytesOf(packed));
    stream.avail_in = static_cast<uInt>(packed.size());
    stream.next_out = plain.get();
    stream.avail_out = static_cast<uInt>(size);
    inflate(&stream, Z_FINISH);
    inflateEnd(&stream);
    return plain;
}

void Inflate(benchmark::State& state, const std::string& plain) {
    const std::string packed = Packed(plain);
    const Block again = Unpacked(packed, plain.size());
    if (!AreBytesOf(plain, {again.get(), plain.size()})) state.SkipWithError("other bytes");
    MeasureText(state, plain, [&] { return Unpacked(packed, plain.size()); });
}

const bool isRegistered = Register(kDecompress, "zlib", Inflate);

}  // namespace
