#pragma once

#include "Controls/CountRow.h"
#include "Models/GenerationMode.h"

#include <QWidget>

#include <memory>
#include <vector>

class QLabel;

namespace torvo {
struct ScanReport;
} // namespace torvo

namespace torvo::app {

class AppModel;
class DisclosureSection;
class MessagePlate;
class StatusIcon;
class WrappingLabel;

/// What the scan found.
class ChannelsCard final : public QWidget {
    Q_OBJECT

public:
    explicit ChannelsCard(AppModel& model, QWidget* parent = nullptr);

protected:
    bool event(QEvent* event) override;

private:
    QWidget* makeRoleCounts();
    QWidget* makeScanning();
    void render();
    void showMessage(const QString& text, QColor color);
    /// As much as the counts of any mode take: nothing below moves when a scan ends or the mode
    /// changes.
    void reserveRoom(bool isScanning);
    /// What the open lists can take beyond their least height, in pixels.
    int spareHeightForLists() const;
    void showCounts(const ScanReport& report);
    /// None empties the lists.
    void showIgnored(const std::shared_ptr<const ScanReport>& report);

    AppModel& model_;
    MessagePlate* plate_;
    StatusIcon* icon_;
    WrappingLabel* message_;
    QWidget* scanning_;
    std::vector<CountRow*> roleRows_; ///< in the order of the window
    QWidget* roleCounts_;
    QWidget* uniformCounts_; ///< of the modes with one kind of sample
    CountRow* loopCount_;
    CountRow* stabCount_;
    DisclosureSection* ignoredFolders_;
    DisclosureSection* ignoredFiles_;
    QWidget* sections_ = nullptr; ///< both
    QWidget* body_ = nullptr;     ///< everything below the heading
    int roomForSections_ = 0;
};

} // namespace torvo::app
