#pragma once

#include <cstddef>
#include <span>

struct AVFrame;

namespace torvo {

/// Mixes the samples of a decoded frame from `first` on to mono, full scale at 1. Throws
/// `AudioError` for a sample format that no decoder in use delivers.
void mixFrame(const AVFrame& frame, std::size_t first, std::span<double> mono);

} // namespace torvo
