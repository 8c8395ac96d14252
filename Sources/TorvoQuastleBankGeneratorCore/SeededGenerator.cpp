#include "SeededGenerator.h"

#include "Platform/Precondition.h"

namespace torvo {

namespace {

constexpr std::uint64_t goldenGamma = 0x9E3779B97F4A7C15;
__extension__ using Product = unsigned __int128;

} // namespace

SeededGenerator::SeededGenerator(std::uint64_t seed) : state_(seed == 0 ? goldenGamma : seed) {}

std::uint64_t SeededGenerator::next() {
    state_ += goldenGamma;
    auto z = state_;
    z = (z ^ (z >> 30U)) * 0xBF58476D1CE4E5B9;
    z = (z ^ (z >> 27U)) * 0x94D049BB133111EB;
    return z ^ (z >> 31U);
}

std::uint64_t SeededGenerator::below(std::uint64_t bound) {
    precondition(bound > 0, "a bounded draw needs a bound of at least 1");
    const auto draw = [&] { return static_cast<Product>(next()) * bound; };
    const auto low = [](Product product) { return static_cast<std::uint64_t>(product); };

    auto product = draw();
    if (low(product) < bound) {
        const std::uint64_t threshold = (0 - bound) % bound;
        while (low(product) < threshold)
            product = draw();
    }
    return static_cast<std::uint64_t>(product >> 64U);
}

} // namespace torvo
