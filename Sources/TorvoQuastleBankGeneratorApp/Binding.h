#pragma once

#include "AppModel.h"

namespace torvo::app {

/// Keeps what `render` shows equal to the model: runs it now and after each of the changes.
template <typename Render, typename... Signals>
void bind(AppModel& model, QObject* context, Render render, Signals... changes) {
    (QObject::connect(&model, changes, context, render), ...);
    render();
}

} // namespace torvo::app
