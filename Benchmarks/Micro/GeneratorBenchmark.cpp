#include "BankGenerator.h"
#include "SeededGenerator.h"

#include <benchmark/benchmark.h>

namespace torvo {
namespace {

RoleBuckets drumsOf(std::int64_t filesPerRole) {
    RoleBuckets buckets;
    for (const auto role : {ChannelRole::kick, ChannelRole::closedHat, ChannelRole::openHat,
                            ChannelRole::snare, ChannelRole::clap, ChannelRole::perc}) {
        for (std::int64_t i = 0; i < filesPerRole; ++i) {
            const auto name = std::string(rawValue(role)) + " " + std::to_string(i);
            buckets.samples(role).push_back({FileURL("/samples/collection/" + name + ".wav"),
                                             role,
                                             name,
                                             CompatibleWav{},
                                             {"wav", 44100, 1, 16, true}});
        }
    }
    return buckets;
}

void makeNinetyNineBanks(benchmark::State& state) {
    const auto buckets = drumsOf(state.range(0));
    const BankNameScheme naming("Collection");
    for (auto _ : state) {
        benchmark::DoNotOptimize(BankGenerator{}.makeRecipes(buckets, GenerationMode::drums,
                                                             std::nullopt, 99, naming, 42));
    }
}
BENCHMARK(makeNinetyNineBanks)->Arg(10)->Arg(300)->Arg(15'000)->Unit(benchmark::kMillisecond);

void draw(benchmark::State& state) {
    SeededGenerator random(42);
    for (auto _ : state)
        benchmark::DoNotOptimize(random.next());
}
BENCHMARK(draw);

} // namespace
} // namespace torvo
