#pragma once

#include "AppModel.h"

namespace torvo::app {

/// Calls `render` now and after each of the model's signals.
template <typename Render, typename... Signals>
void bind(AppModel& model, QObject* context, Render render, Signals... changes) {
    (QObject::connect(&model, changes, context, render), ...);
    render();
}

} // namespace torvo::app
