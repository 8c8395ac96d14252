#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace torvo::test {

/// A Windows Media Audio stream without its container.
struct WindowsMediaStream {
    std::vector<std::byte> format;               ///< WAVEFORMATEX with the codec's own fields
    std::vector<std::vector<std::byte>> packets; ///< each as long as the block size in `format`
    double secondsInPacket = 0;
};

/// The stream in a WAV file of FFmpeg's encoder: one codec frame in each packet. The audio must
/// leave the highest coefficients of every frame at zero, so that each frame ends with the same
/// code.
WindowsMediaStream windowsMediaInWav(std::span<const std::byte> wavFile);

/// The same codec frames as the encoders of Windows Media pack them: with the bit reservoir, about
/// `framesInPacket` of them in a packet, the last one of each continued in the next.
WindowsMediaStream withBitReservoir(const WindowsMediaStream& stream, double framesInPacket,
                                    std::uint32_t samplesInFrame);

/// An ASF file (Advanced Systems Format 1.2) with the stream in it.
std::vector<std::byte> asfFile(const WindowsMediaStream& stream);

} // namespace torvo::test
