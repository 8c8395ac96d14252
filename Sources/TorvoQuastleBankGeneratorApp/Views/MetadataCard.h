#pragma once

#include "Models/TorvoMetadataOptions.h"

#include <QWidget>

#include <array>
#include <functional>

class QComboBox;
class QLayout;

namespace torvo::app {

class AppModel;
class ChannelToggleButton;

/// The playback settings that are written into the files.
class MetadataCard final : public QWidget {
    Q_OBJECT

public:
    explicit MetadataCard(AppModel& model, QWidget* parent = nullptr);

private:
    QLayout* makePickers();
    QLayout* makeCVAssignments();
    QLayout* makeChannelButtons();
    /// Writes one setting.
    void change(const std::function<void(TorvoMetadataOptions&)>& edit);

    AppModel& model_;
};

} // namespace torvo::app
