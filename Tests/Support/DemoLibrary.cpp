#include "DemoLibrary.h"

#include "AiffFixture.h"
#include "SeededGenerator.h"
#include "TemporaryFolder.h"
#include "WavFixture.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <numbers>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace torvo::test {

namespace fs = std::filesystem;

namespace {

/// White noise and random numbers, identical on every machine.
class Dice {
public:
    explicit Dice(std::uint64_t seed) : generator_(seed) {}
    double between(double low, double high) {
        return low + (high - low) * static_cast<double>(generator_.next() >> 11U) * 0x1p-53;
    }
    double noise() { return between(-1, 1); }

private:
    SeededGenerator generator_;
};

/// A mono sound: amplitude at a time in seconds.
using Voice = std::function<double(double seconds)>;

double decay(double seconds, double length) {
    return std::exp(-seconds / length);
}

double sine(double cycles) {
    return std::sin(2 * std::numbers::pi * cycles);
}

Voice kick(Dice& dice) {
    const double low = dice.between(38, 62);
    const double drop = dice.between(90, 240);
    const double speed = dice.between(0.015, 0.05);
    const double length = dice.between(0.08, 0.35);
    return [=](double t) {
        const double cycles = low * t + drop * speed * (1 - decay(t, speed));
        return 0.95 * sine(cycles) * decay(t, length);
    };
}

Voice snare(Dice& dice) {
    const double tone = dice.between(160, 240);
    const double length = dice.between(0.06, 0.16);
    const double snap = dice.between(0.4, 0.8);
    return [=, noise = dice](double t) mutable {
        return (snap * noise.noise() + (1 - snap) * sine(tone * t)) * decay(t, length);
    };
}

Voice clap(Dice& dice) {
    const double spread = dice.between(0.008, 0.014);
    const double length = dice.between(0.05, 0.12);
    return [=, noise = dice](double t) mutable {
        const double burst = t < 3 * spread ? decay(std::fmod(t, spread), spread / 3) : 1;
        return 0.8 * noise.noise() * burst * decay(t, length);
    };
}

Voice hat(Dice& dice, double length) {
    const double brightness = dice.between(0.8, 0.98);
    return [=, noise = dice, previous = 0.0](double t) mutable {
        const double white = noise.noise();
        const double high = white - brightness * previous;
        previous = white;
        return 0.4 * high * decay(t, length);
    };
}

Voice bell(Dice& dice) {
    const double pitch = dice.between(300, 900);
    const double ratio = dice.between(1.4, 2.9);
    const double length = dice.between(0.05, 0.4);
    return [=](double t) {
        return 0.45 * (sine(pitch * t) + sine(pitch * ratio * t)) * decay(t, length);
    };
}

std::vector<double> rendered(Voice voice, double seconds, std::uint32_t sampleRate,
                             std::uint16_t channels) {
    const auto frames = static_cast<std::size_t>(seconds * sampleRate);
    std::vector<double> samples;
    samples.reserve(frames * channels);
    for (std::size_t frame = 0; frame < frames; ++frame) {
        const double value =
            std::clamp(voice(static_cast<double>(frame) / sampleRate), -0.999, 0.999);
        samples.insert(samples.end(), channels, value);
    }
    return samples;
}

std::vector<std::int16_t> sixteenBits(const std::vector<double>& samples) {
    std::vector<std::int16_t> rounded;
    rounded.reserve(samples.size());
    for (const double sample : samples)
        rounded.push_back(static_cast<std::int16_t>(std::lround(sample * 32767)));
    return rounded;
}

/// 16-bit AU (Sun, audio(4)).
std::vector<std::byte> auFile(std::span<const std::int16_t> samples, std::uint32_t sampleRate,
                              std::uint16_t channels) {
    std::vector<std::byte> file;
    append(file, ".snd");
    appendBigEndian(file, 24, 4);
    appendBigEndian(file, samples.size_bytes(), 4);
    appendBigEndian(file, 3, 4);
    appendBigEndian(file, sampleRate, 4);
    appendBigEndian(file, channels, 4);
    appendBigEndianSamples(file, samples);
    return file;
}

/// Cycles through seven common sample formats.
void saveInSomeFormat(const fs::path& folder, const std::string& name, const Voice& voice,
                      double seconds, unsigned turn) {
    const auto wav = [&](const WavFormat& format) {
        saveFile(folder / (name + ".wav"),
                 wavFile(format, rendered(voice, seconds, format.sampleRate, format.channels)));
    };
    switch (turn % 7) {
    case 1:
        return wav({.sampleRate = 48000, .channels = 2, .bits = 24});
    case 2:
        return saveFile(folder / (name + ".aif"),
                        aiffFile(44100, sixteenBits(rendered(voice, seconds, 44100, 1))));
    case 3:
        return wav({.sampleRate = 44100, .channels = 2, .bits = 24});
    case 4:
        return wav({.sampleRate = 96000, .bits = 32, .encoding = WavEncoding::floatingPoint});
    case 5:
        return wav({.sampleRate = 22050, .bits = 8});
    case 6:
        return saveFile(folder / (name + ".au"),
                        auFile(sixteenBits(rendered(voice, seconds, 32000, 2)), 32000, 2));
    default:
        return wav({});
    }
}

struct Group {
    std::string_view folder;
    std::string_view name; ///< a number follows
    unsigned count;
    double seconds;
    std::function<Voice(Dice&)> voice;
};

} // namespace

void makeDemoLibrary(const fs::path& folder) {
    const std::vector<Group> groups{
        {"Kicks", "Kick", 14, 0.6, kick},
        {"Kicks/808", "BD Long", 6, 1.2, kick},
        {"Snares", "Snare", 12, 0.4, snare},
        {"Claps", "Clap", 9, 0.4, clap},
        {"Hats/Closed Hats", "CH", 10, 0.15, [](Dice& dice) { return hat(dice, 0.025); }},
        {"Hats/Open", "OH", 8, 0.8, [](Dice& dice) { return hat(dice, 0.25); }},
        {"Perc", "Tom", 8, 0.7, kick},
        {"Perc", "Cowbell", 8, 0.6, bell},
        {"Shakers", "Shaker", 5, 0.2, [](Dice& dice) { return hat(dice, 0.05); }},
        {"Loose ends", "Rim", 4, 0.2, bell},
        {"Loose ends", "take", 3, 0.3, snare},
    };
    Dice dice(2024);
    unsigned turn = 0;
    for (const auto& group : groups) {
        for (unsigned i = 1; i <= group.count; ++i) {
            const auto name = std::string(group.name) + (i < 10 ? " 0" : " ") + std::to_string(i);
            saveInSomeFormat(folder / group.folder, name, group.voice(dice), group.seconds, turn++);
        }
    }
    std::vector<std::byte> note;
    append(note, "Recorded on a rainy weekend. Free to use.\n");
    saveFile(folder / "read me.txt", note);
    saveFile(folder / "Kicks" / "notes.txt", note);
    saveFile(folder / "Kicks" / ".DS_Store", note);
    saveFile(folder / "Snares" / "Snare 01.wav.asd", note);
}

} // namespace torvo::test
