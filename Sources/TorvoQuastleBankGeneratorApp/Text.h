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

/// A tooltip that shows the text as it is, long paths on several lines: Qt takes "<b>kick.txt" for
/// markup.
QString plainToolTip(const QString& text);

} // namespace torvo::app
