#pragma once

class QWidget;

namespace torvo::app {

/// Tells screen readers what the window's own controls are: cards are groups, a disclosure row can
/// be opened, a link is a link. Called once, before the first window.
void installAccessibility();

/// A screen reader reads this out when it appears, without the focus being there.
void setAnnounced(QWidget& widget);

/// Has it read out again: what it says has changed in its place.
void announce(QWidget& widget);

} // namespace torvo::app
