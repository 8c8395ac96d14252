#include "AudioSupport/AudioError.h"

extern "C" {
#include <libavutil/error.h>
}

namespace torvo {

AudioError AudioError::invalidData() {
    return AudioError(AVERROR_INVALIDDATA);
}

} // namespace torvo
