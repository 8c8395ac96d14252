#pragma once

#include "Controls/BusyCursor.h"
#include "Controls/Card.h"

namespace torvo::app {

class AppModel;
class FolderDrops;

/// The card with the source folder, dropped or chosen.
class SourceCard final : public Card {
    Q_OBJECT

public:
    SourceCard(AppModel& model, FolderDrops& drops, QWidget* parent = nullptr);

private:
    void chooseFolder();

    AppModel& model_;
    BusyCursor busyCursor_; ///< while a slow share keeps a chosen folder waiting
};

} // namespace torvo::app
