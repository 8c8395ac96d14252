#pragma once

#include "Platform/FileURL.h"

#include <QString>

#include <string_view>

namespace torvo::app {

/// Converts the core's UTF-8 to a QString.
inline QString toQString(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

inline QString shownPath(const FileURL& url) {
    return toQString(url.shownPath());
}

/// A tooltip that shows the text literally, with long paths on several lines. Qt would interpret
/// "<b>kick.txt" as markup.
QString plainToolTip(const QString& text);

} // namespace torvo::app
