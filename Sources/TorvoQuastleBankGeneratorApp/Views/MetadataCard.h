#pragma once

#include "Controls/Card.h"
#include "Models/TorvoMetadataOptions.h"

#include <array>
#include <functional>

class QComboBox;
class QLayout;

namespace torvo::app {

class AppModel;
class ChannelToggleButton;

/// The card with the playback settings that are written into each file.
class MetadataCard final : public Card {
    Q_OBJECT

public:
    explicit MetadataCard(AppModel& model, QWidget* parent = nullptr);

private:
    QLayout* makePickers();
    QLayout* makeCVAssignments();
    QLayout* makeChannelButtons();
    /// Changes one setting.
    void change(const std::function<void(TorvoMetadataOptions&)>& edit);

    AppModel& model_;
};

} // namespace torvo::app
