#pragma once

namespace torvo::app {

/// Tells screen readers what the window's own controls are: cards are groups, a disclosure row can
/// be opened, a link is a link. Called once, before the first window.
void installAccessibility();

} // namespace torvo::app
