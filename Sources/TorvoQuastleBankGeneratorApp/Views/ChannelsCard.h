#pragma once

#include "Controls/CountRow.h"
#include "Models/GenerationMode.h"

#include <QWidget>

#include <memory>
#include <vector>

class QLabel;

namespace torvo {
struct ScanReport;
}

namespace torvo::app {

class AppModel;
class DisclosureSection;
class WrappingLabel;

/// What the scan found.
class ChannelsCard final : public QWidget {
    Q_OBJECT

public:
    explicit ChannelsCard(AppModel& model, QWidget* parent = nullptr);

private:
    QWidget* makeRoleCounts();
    QWidget* makeScanning();
    void render();
    void showReport(const std::shared_ptr<const ScanReport>& report);

    AppModel& model_;
    WrappingLabel* message_;
    QWidget* scanning_;
    std::vector<CountRow*> roleRows_; ///< in the order of the window
    QWidget* roleCounts_;
    CountRow* loopCount_;
    CountRow* stabCount_;
    DisclosureSection* ignoredFolders_;
    DisclosureSection* ignoredFiles_;
};

} // namespace torvo::app
