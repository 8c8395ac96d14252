#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace torvo {

/// The run's source of randomness: SplitMix64 (Steele, Lea and Flood, 2014). Every draw is part of
/// what a seed means; one draw more or fewer changes every bank.
class SeededGenerator {
public:
    explicit SeededGenerator(std::uint64_t seed);

    std::uint64_t next();

    /// Unbiased, below `bound` (at least 1), by multiplication and rejection (Lemire, 2019). Each
    /// rejected product costs one further draw.
    std::uint64_t below(std::uint64_t bound);

    /// Makes exactly `count - 1` bounded draws, or none for fewer than two items.
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
