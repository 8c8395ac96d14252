#include "Inputs.h"

#include "ChildProcess.h"
#include "Platform/SystemFileManager.h"
#include "SeededGenerator.h"
#include "WavFixture.h"

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <utility>

namespace torvo::bench {

namespace fs = std::filesystem;

namespace {

/// Typical names of a drum library: folders with a role, and folders whose files have roles.
constexpr std::array<std::string_view, 10> groups{
    "Kicks/Kick",         "Kicks/808/BD Long",
    "Snares/Snare",       "Claps/Clap Dry",
    "Hats/Closed/CHH",    "Open Hats/OH Bright",
    "Percussion/Cowbell", "Perc/Tom",
    "Vinyl Finds/Snare",  "One Shots (Vol. 2)/Closed_HiHat"};

/// The path of file `index`, in folders of 200 files.
fs::path placeOf(std::size_t index, std::string_view extension) {
    const auto folder = index / 200;
    const std::string group(groups.at(folder % groups.size()));
    return "Pack " + std::to_string(folder / groups.size() + 1) + "/" + group + " " +
           std::to_string(index % 200 + 1) + std::string(extension);
}

void write(const fs::path& path, std::span<const std::byte> bytes) {
    fs::create_directories(path.parent_path());
    const auto file = systemFileManager()->open(path, OpenMode::create);
    file->write(0, bytes);
    file->close();
}

/// Mono and stereo, 16 and 24 bits; every fourth file has the given sample rate.
std::vector<std::byte> drumSample(std::size_t index, std::size_t minFrames, std::size_t spread,
                                  std::uint32_t fourthRate = 48000) {
    const auto turn = index % 4;
    return test::wavFile({.sampleRate = turn == 3 ? fourthRate : 44100U,
                          .channels = static_cast<std::uint16_t>(turn == 1 ? 2 : 1),
                          .bits = static_cast<std::uint16_t>(turn == 2 ? 24 : 16)},
                         minFrames + index % spread);
}

void makeWavFiles(const fs::path& folder, std::size_t count, std::size_t minFrames,
                  std::size_t spread) {
    for (std::size_t i = 0; i < count; ++i)
        write(folder / placeOf(i, ".wav"), drumSample(i, minFrames, spread));
}

void makeFullFolders(const fs::path& folder, std::size_t count) {
    constexpr std::size_t filesPerFolder = 1000;
    constexpr std::size_t foldersPerOriginal = 50; // ext4 allows 65,000 links to a file
    constexpr std::array<std::string_view, 6> names{"Kicks", "Percussion", "Snares",
                                                    "Claps", "Hats",       "Closed Hats"};
    const auto originals = folder.parent_path() / (folder.filename().string() + " originals");
    std::size_t index = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const auto original = originals / (std::to_string(i / foldersPerOriginal) + ".wav");
        if (i % foldersPerOriginal == 0)
            write(original, drumSample(i / foldersPerOriginal, 700, 300));
        const auto place =
            folder / (std::string(names.at(i % names.size())) + " " + std::to_string(i + 1));
        fs::create_directories(place);
        for (std::size_t j = 0; j < filesPerFolder; ++j, ++index) {
            std::string name = "drumsampleaaaaa";
            for (std::size_t rest = index, at = name.size(); rest > 0; rest /= 26)
                name.at(--at) = static_cast<char>('a' + rest % 26);
            fs::create_hard_link(original, place / (name + ".wav"));
        }
    }
    fs::remove_all(originals);
}

void makeCompatibleFiles(const fs::path& folder, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        write(folder / placeOf(i, ".wav"), drumSample(i, 20'000, 40'000, 44100));
}

void makeMixedFiles(const fs::path& folder, std::size_t count) {
    constexpr std::array<std::string_view, 5> extensions{".flac", ".mp3", ".aiff", ".ogg", ".m4a"};
    constexpr std::size_t distinct = 4;
    const auto originals = folder.parent_path() / (folder.filename().string() + " originals");
    for (std::size_t i = 0; i < distinct; ++i) {
        const auto wav = originals / (std::to_string(i) + ".wav");
        write(wav, drumSample(i, 20'000, 9000));
        for (const auto extension : extensions) {
            auto encoded = wav;
            encoded.replace_extension(extension);
            runProcess({"ffmpeg", "-nostdin", "-v", "error", "-y", "-i", wav, encoded});
        }
    }
    for (std::size_t i = 0; i < count; ++i) {
        const auto extension =
            i % 2 == 0 ? std::string_view(".wav") : extensions.at(i / 2 % extensions.size());
        const auto place = folder / placeOf(i, extension);
        fs::create_directories(place.parent_path());
        const auto original = std::to_string(i % distinct) + std::string(extension);
        fs::copy_file(originals / original, place, fs::copy_options::overwrite_existing);
    }
    fs::remove_all(originals);
}

/// Common other files in sample folders: notes, images, archives, programs, random bytes, empty
/// files.
void makeOtherFiles(const fs::path& folder, std::size_t count) {
    using namespace std::string_view_literals;
    constexpr std::array<std::pair<std::string_view, std::string_view>, 6> kinds{
        {{"Recorded on a rainy weekend.\n"sv, ".txt"},
         {"\x89PNG\r\n\x1a\n\0\0\0\rIHDR"sv, ".png"},
         {"PK\x03\x04\x14\0"sv, ".zip"},
         {"%PDF-1.7\n"sv, ".pdf"},
         {""sv, ".dat"},
         {"\xff\xd8\xff\xe0\0\x10JFIF"sv, ".jpg"}}};
    SeededGenerator random(7);
    for (std::size_t i = 0; i < count; ++i) {
        const auto& [beginning, extension] = kinds.at(i % kinds.size());
        std::vector<std::byte> bytes;
        test::append(bytes, beginning);
        for (std::size_t length = i % 3000; bytes.size() < length;)
            bytes.push_back(static_cast<std::byte>(random.next() >> 56U));
        write(folder / placeOf(i, extension), bytes);
    }
}

void makeLoops(const fs::path& folder, std::size_t count, double shortest) {
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t rate = i % 2 == 0 ? 48000 : 96000;
        const double seconds = shortest * (1 + static_cast<double>(i) / static_cast<double>(count));
        write(folder / ("Loop " + std::to_string(i + 1) + ".wav"),
              test::wavFile({.sampleRate = rate, .channels = 2, .bits = 24},
                            static_cast<std::size_t>(seconds * rate)));
    }
}

} // namespace

Inputs::Inputs(fs::path folder, const Sizes& sizes) : folder_(std::move(folder)), sizes_(sizes) {}

template <typename Make>
fs::path Inputs::made(const char* name, Make make) const {
    const auto folder = folder_ / name;
    const auto mark = folder_ / (std::string(name) + ".made");
    if (!fs::exists(mark)) {
        fs::remove_all(folder);
        fs::create_directories(folder);
        runForked([&] { make(folder); });
        write(mark, {});
    }
    return folder;
}

fs::path Inputs::wavLibrary() const {
    return made("Drums", [&](const auto& to) { makeWavFiles(to, sizes_.wavFiles, 8000, 8000); });
}

fs::path Inputs::smallLibrary() const {
    return made("Collection",
                [&](const auto& to) { makeWavFiles(to, sizes_.smallWavFiles, 700, 300); });
}

fs::path Inputs::hugeLibrary() const {
    return made("Huge", [&](const auto& to) { makeFullFolders(to, sizes_.fullFolders); });
}

fs::path Inputs::compatibleLibrary() const {
    return made("Compatible", [&](const auto& to) { makeCompatibleFiles(to, sizes_.wavFiles); });
}

fs::path Inputs::mixedLibrary() const {
    return made("Mixed", [&](const auto& to) { makeMixedFiles(to, sizes_.mixedFiles); });
}

fs::path Inputs::otherFiles() const {
    return made("Other", [&](const auto& to) { makeOtherFiles(to, sizes_.otherFiles); });
}

fs::path Inputs::loops() const {
    return made("Loops", [&](const auto& to) { makeLoops(to, sizes_.loops, sizes_.shortestLoop); });
}

fs::path Inputs::manyLoops() const {
    const auto originals = loops();
    return made("Many Loops", [&](const auto& to) {
        for (const auto& loop : filesBelow(originals)) {
            for (int copy = 0; copy < 8; ++copy)
                fs::create_hard_link(loop, to / (std::to_string(copy) + loop.filename().string()));
        }
    });
}

std::vector<fs::path> filesBelow(const fs::path& folder) {
    std::vector<fs::path> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file())
            files.push_back(entry.path());
    }
    return files;
}

} // namespace torvo::bench
