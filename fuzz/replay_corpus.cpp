#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

// Stands in for libFuzzer where the compiler has none: FOLDER's seeds as they are, cut, and with
// single bytes changed, the same ones on each run. A fault ends the process.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using Bytes = std::vector<std::uint8_t>;

// Of longer seeds as many cuts and changes are tried, spread over the whole.
constexpr std::size_t kMostPlaces = 600;

Bytes ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// Every input in a block of its own size, so that AddressSanitizer sees a byte read past its end.
void Try(Bytes bytes) {
    bytes.shrink_to_fit();
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

std::size_t Replay(const Bytes& seed, std::mt19937& random) {
    std::size_t inputs = 1;
    Try(seed);
    const std::size_t step = seed.size() / kMostPlaces + 1;
    for (std::size_t place = 0; place < seed.size(); place += step, inputs += 2) {
        Try(Bytes(seed.begin(), seed.begin() + static_cast<std::ptrdiff_t>(place)));
        Bytes changed = seed;
        changed[place] = static_cast<std::uint8_t>(changed[place] ^ (1 + random() % 255));
        Try(std::move(changed));
    }
    return inputs;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) {
        std::fprintf(stderr, "usage: %s FOLDER\n", arguments[0]);
        return 2;
    }
    std::vector<std::filesystem::path> seeds;
    std::ranges::copy(std::filesystem::directory_iterator(arguments[1]), std::back_inserter(seeds));
    std::ranges::sort(seeds);
    std::mt19937 random(1);
    std::size_t inputs = 0;
    for (const std::filesystem::path& seed : seeds)
        inputs += Replay(ReadFile(seed), random);
    std::printf("%zu inputs from %zu seeds\n", inputs, seeds.size());
    return seeds.empty() ? 1 : 0;
}
