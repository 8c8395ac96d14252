#include "TorvoMetadata.h"
#include "WavFixture.h"

#include <benchmark/benchmark.h>

namespace torvo {
namespace {

std::vector<std::byte> drum() {
    return test::wavFile({}, std::size_t{20'000});
}

/// The time includes the copy of the file that each iteration needs.
void stampNewFile(benchmark::State& state) {
    const auto file = drum();
    const TorvoWAVMetadataWriter writer;
    for (auto _ : state) {
        auto copy = file;
        writer.updateBusyChunk(copy, TorvoMetadataOptions(), 3);
        benchmark::DoNotOptimize(copy.data());
    }
}
BENCHMARK(stampNewFile);

void stampAgain(benchmark::State& state) {
    auto file = drum();
    const TorvoWAVMetadataWriter writer;
    for (auto _ : state) {
        writer.updateBusyChunk(file, TorvoMetadataOptions(), 3);
        benchmark::DoNotOptimize(file.data());
    }
}
BENCHMARK(stampAgain);

} // namespace
} // namespace torvo
