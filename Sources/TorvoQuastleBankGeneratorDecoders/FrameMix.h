#pragma once

#include <cstddef>
#include <span>

struct AVFrame;

namespace torvo {

/// Mixes samples of a decoded frame to mono, starting at sample `first`, with full scale at ±1.
/// Throws `AudioError` for an unsupported sample format.
void mixFrame(const AVFrame& frame, std::size_t first, std::span<double> mono);

} // namespace torvo
