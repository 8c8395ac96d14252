#include "AudioSupport.h"
#include "AudioSupport/RiffChunks.h"
#include "TemporaryFolder.h"
#include "WavFixture.h"

#include <benchmark/benchmark.h>

namespace torvo {
namespace {

/// Like the file of a field recorder: metadata chunks before and after the audio.
std::vector<std::byte> recording() {
    const std::vector<std::byte> note(602);
    auto file = test::wavFile({.bits = 24}, std::size_t{20'000});
    const auto notes = test::riffChunk("LIST", note);
    file.insert(file.begin() + 12, notes.begin(), notes.end());
    test::append(file, notes);
    return file;
}

void findDataInMemory(benchmark::State& state) {
    const auto file = recording();
    const MemoryByteSource source(file);
    for (auto _ : state)
        benchmark::DoNotOptimize(findDataChunk(source));
}
BENCHMARK(findDataInMemory);

void inspectFile(benchmark::State& state) {
    const test::TemporaryFolder folder;
    const FileURL file(folder.write("recording.wav", recording()));
    const AVAudioFileInspector inspector;
    for (auto _ : state)
        benchmark::DoNotOptimize(inspector.inspectAudioFile(file));
}
BENCHMARK(inspectFile);

} // namespace
} // namespace torvo
