#pragma once

namespace torvo::app {

/// Describes the window's own controls to screen readers: cards are groups, disclosure headers can
/// be expanded, links are links. Call once, before the first window is created.
void installAccessibility();

} // namespace torvo::app
