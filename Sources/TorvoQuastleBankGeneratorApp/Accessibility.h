#pragma once

#include <functional>

class QWidget;

namespace torvo::app {

/// Tells screen readers what the window's own controls are: cards are groups, a disclosure row can
/// be opened, a link is a link. Called once, before the first window.
void installAccessibility();

/// A screen reader reads this out when it appears, without the focus being there.
void setAnnounced(QWidget& widget);

/// Changes what such a widget says and has it read out, also where it stood before: what appears is
/// read out by itself.
void announceAfter(QWidget& widget, const std::function<void()>& change);

} // namespace torvo::app
