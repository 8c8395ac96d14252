#include "RoleClassifier.h"

#include <benchmark/benchmark.h>

namespace torvo {
namespace {

void classify(benchmark::State& state, std::string_view name) {
    for (auto _ : state)
        benchmark::DoNotOptimize(classifyRole(name));
}
BENCHMARK_CAPTURE(classify, firstList, "Closed_HiHat-01 (Dry)");
BENCHMARK_CAPTURE(classify, lastWord, "Vintage Rimshot 12");
BENCHMARK_CAPTURE(classify, noRole, "Vinyl_Texture-07 [Long Tail Reverb] 96k");
BENCHMARK_CAPTURE(classify, notASCII, "Größe Hängetom – Nummer 3");

void judgeFolder(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(namesIgnoredFolder("Cymbals & Rides (Vol. 2)"));
}
BENCHMARK(judgeFolder);

} // namespace
} // namespace torvo
