#pragma once

#include "Controls/Card.h"
#include "Controls/CountRow.h"
#include "Models/GenerationMode.h"

#include <memory>
#include <vector>

class QAction;
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

/// The card that shows the result of the scan.
class ChannelsCard final : public Card {
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
    /// Reserves the height of the tallest counts, so that nothing below moves when a scan ends or
    /// the mode changes.
    void reserveRoom(bool isScanning);
    /// The additional height at which the open lists would show all their rows, in pixels.
    int spareHeightForLists() const;
    void showCounts(const ScanReport& report);
    /// Enables the entry of a row's menu once the item has been found.
    void offerToShow(const QString& path, QAction* show);
    /// Null clears the lists.
    void showIgnored(const std::shared_ptr<const ScanReport>& report);

    AppModel& model_;
    MessagePlate* plate_;
    StatusIcon* icon_;
    WrappingLabel* message_;
    QWidget* scanning_;
    std::vector<CountRow*> roleRows_; ///< in the order in which they are shown
    QWidget* roleCounts_;
    QWidget* uniformCounts_; ///< of the modes with one kind of sample
    CountRow* loopCount_;
    CountRow* stabCount_;
    DisclosureSection* ignoredFolders_;
    DisclosureSection* ignoredFiles_;
    QWidget* sections_ = nullptr; ///< contains both lists
    QWidget* body_ = nullptr;     ///< everything below the heading
    int roomForSections_ = 0;
};

} // namespace torvo::app
