#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace torvo {

/// The random number generator of a run: SplitMix64 (Steele, Lea and Flood, 2014). The number of
/// draws must not change: one draw more or fewer gives other banks for the same seed.
class SeededGenerator {
public:
    explicit SeededGenerator(std::uint64_t seed);

    std::uint64_t next();

    /// An unbiased random number below `bound`, which must be at least 1, by multiplication and
    /// rejection (Lemire, 2019). Each rejection uses one more draw.
    std::uint64_t below(std::uint64_t bound);

    /// Shuffles with exactly `items.size() - 1` calls of `below`, or none for fewer than two items.
    template <typename Item>
    void shuffle(std::vector<Item>& items) {
        for (std::size_t i = 0; i + 1 < items.size(); ++i) {
            const auto j = i + static_cast<std::size_t>(below(items.size() - i));
            if (j != i)
                std::swap(items[i], items[j]);
        }
    }

private:
    std::uint64_t state_;
};

} // namespace torvo
