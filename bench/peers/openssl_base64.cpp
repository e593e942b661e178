// Base64 by OpenSSL's EVP, into new memory each time, as ours.

#include <openssl/evp.h>

#include <memory>

#include "bench/texts.h"
#include "tvl/base64_buffer.h"

namespace {

using Block = std::unique_ptr<unsigned char[]>;

Block Encoded(const std::string& plain) {
    Block text = std::make_unique_for_overwrite<unsigned char[]>(plain.size() / 3 * 4 + 5);
    EVP_EncodeBlock(text.get(), BytesOf(plain), static_cast<int>(plain.size()));
    return text;
}

Block Decoded(const std::string& text) {
    Block plain = std::make_unique_for_overwrite<unsigned char[]>(text.size() / 4 * 3);
    EVP_DecodeBlock(plain.get(), BytesOf(text), static_cast<int>(text.size()));
    return plain;
}

std::string OurText(const std::string& plain) {
    return Base64Buffer(BytesOf(plain), static_cast<std::int32_t>(plain.size())).ToText();
}

void Encode(benchmark::State& state, const std::string& plain) {
    const Block text = Encoded(plain);
    if (OurText(plain) != reinterpret_cast<const char*>(text.get()))
        state.SkipWithError("another text");
    MeasureText(state, plain, [&] { return Encoded(plain); });
}

void Decode(benchmark::State& state, const std::string& plain) {
    const std::string text = OurText(plain);
    const Block again = Decoded(text);
    if (!AreBytesOf(plain, {again.get(), plain.size()})) state.SkipWithError("other bytes");
    MeasureText(state, plain, [&] { return Decoded(text); });
}

const bool isRegistered = Register(kEncode, "EVP", Encode) && Register(kDecode, "EVP", Decode);

}  // namespace
