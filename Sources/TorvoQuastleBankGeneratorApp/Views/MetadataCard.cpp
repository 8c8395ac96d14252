#include "Views/MetadataCard.h"

#include "Binding.h"
#include "Controls/ChannelToggleButton.h"
#include "Controls/Labels.h"
#include "Models/Device.h"
#include "Text.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListView>
#include <QWheelEvent>

#include <algorithm>

namespace torvo::app {

namespace {

constexpr int channelCount{device::channelCount};

/// Ignores the wheel, so that it scrolls the page.
class PickerBox final : public QComboBox {
public:
    PickerBox() { setFocusPolicy(Qt::StrongFocus); }

protected:
    void wheelEvent(QWheelEvent* event) override { event->ignore(); }
};

struct Picker {
    QComboBox* box;
    QVBoxLayout* column;
};

/// `caption` is shown above the box, `label` is its accessible label, `explanation` its tooltip.
Picker makePicker(const QString& caption, const QString& label, const QString& explanation,
                  const QStringList& options) {
    auto* box = new PickerBox;
    box->setAccessibleName(label);
    box->setToolTip(explanation);
    box->setFont(MarloTheme::font(14, MarloTheme::FontCut::medium));
    box->setMaxVisibleItems(static_cast<int>(options.size()));
    box->addItems(options);
    auto* title = makeCaption(caption);
    title->setBuddy(box);
    title->setToolTip(explanation);
    auto* column = new QVBoxLayout;
    column->setSpacing(4);
    column->addWidget(title);
    column->addWidget(box);
    return {box, column};
}

template <typename Options>
int indexOf(const Options& options, typename Options::value_type value) {
    return static_cast<int>(std::find(options.begin(), options.end(), value) - options.begin());
}

template <typename Options>
QStringList displayNames(const Options& options) {
    QStringList names;
    for (const auto option : options)
        names.append(toQString(displayName(option)));
    return names;
}

QString explanation(TorvoFilterType filter) {
    switch (filter) {
    case TorvoFilterType::off:
        return MetadataCard::tr("no filter");
    case TorvoFilterType::lowPass:
        return MetadataCard::tr("low pass");
    case TorvoFilterType::bandPass:
        return MetadataCard::tr("band pass");
    case TorvoFilterType::notch:
        return MetadataCard::tr("notch");
    case TorvoFilterType::highPass:
        return MetadataCard::tr("high pass");
    }
    return {};
}

/// "LP: low pass", one filter a line.
QString filterExplanations() {
    QStringList lines;
    for (const auto filter : allTorvoFilterTypes)
        lines.append(toQString(displayName(filter)) + QStringLiteral(": ") + explanation(filter));
    return lines.join(QLatin1Char('\n'));
}

/// For the tooltip of an option and for screen readers.
void explainOption(QComboBox& box, int index, const QString& explanation) {
    box.setItemData(index, explanation, Qt::ToolTipRole);
    box.setItemData(index, explanation, Qt::AccessibleDescriptionRole);
}

QStringList bitNames() {
    QStringList names;
    for (auto bits = device::minBits; bits <= device::maxBits; ++bits)
        names.append(QString::number(bits));
    return names;
}

} // namespace

MetadataCard::MetadataCard(AppModel& model, QWidget* parent)
    : Card(tr("METADATA"), parent), model_(model) {
    QVBoxLayout* content = column();
    content->addWidget(makeSubheading(tr("Globally Applied Metadata")));
    content->addLayout(makePickers());
    content->addSpacing(4);
    content->addWidget(makeSubheading(tr("Per-Channel Metadata")));
    content->addLayout(makeCVAssignments());
    content->addLayout(makeChannelButtons());
}

void MetadataCard::change(const std::function<void(TorvoMetadataOptions&)>& edit) {
    TorvoMetadataOptions options = model_.metadataOptions();
    edit(options);
    model_.setMetadataOptions(std::move(options));
}

QLayout* MetadataCard::makePickers() {
    const Picker bits = makePicker(tr("BITS"), tr("Bits"),
                                   tr("Playback bit depth: fewer bits, more grit"), bitNames());
    const Picker rate = makePicker(tr("RATE"), tr("Rate"), tr("Playback sample rate in kHz"),
                                   displayNames(allTorvoPlaybackRates));
    const Picker filter = makePicker(tr("FILTER"), tr("Filter"), filterExplanations(),
                                     displayNames(allTorvoFilterTypes));
    for (int index = 0; const auto value : allTorvoPlaybackRates)
        explainOption(*rate.box, index++, tr("%1 kHz").arg(rawValue(value)));
    for (int index = 0; const auto value : allTorvoFilterTypes)
        explainOption(*filter.box, index++, explanation(value));
    auto* row = new QHBoxLayout;
    row->setSpacing(MarloTheme::columnGap);
    for (const Picker& picker : {bits, rate, filter})
        row->addLayout(picker.column, 1);

    connect(bits.box, &QComboBox::activated, this, [this](int index) {
        change([index](TorvoMetadataOptions& options) {
            options.bits = std::clamp(index + device::minBits, device::minBits, device::maxBits);
        });
    });
    connect(rate.box, &QComboBox::activated, this, [this](int index) {
        change([index](TorvoMetadataOptions& options) {
            options.rate = allTorvoPlaybackRates.at(static_cast<std::size_t>(index));
        });
    });
    connect(filter.box, &QComboBox::activated, this, [this](int index) {
        change([index](TorvoMetadataOptions& options) {
            options.filterType = allTorvoFilterTypes.at(static_cast<std::size_t>(index));
        });
    });
    bind(
        model_, this,
        [this, bits, rate, filter] {
            const TorvoMetadataOptions& options = model_.metadataOptions();
            bits.box->setCurrentIndex(static_cast<int>(options.bits - device::minBits));
            rate.box->setCurrentIndex(indexOf(allTorvoPlaybackRates, options.rate));
            filter.box->setCurrentIndex(indexOf(allTorvoFilterTypes, options.filterType));
        },
        &AppModel::metadataOptionsChanged);
    return row;
}

QLayout* MetadataCard::makeCVAssignments() {
    auto* enable = new QCheckBox(tr("ENABLE CV ASSIGNMENTS"));
    enable->setFont(MarloTheme::font(13, MarloTheme::FontCut::medium));
    enable->setToolTip(tr("On the channels selected below, CV1 controls the filter cutoff,\n"
                          "CV2 the filter resonance and CV3 the speed"));
    connect(enable, &QCheckBox::clicked, this, [this](bool checked) {
        change(
            [checked](TorvoMetadataOptions& options) { options.cvAssignmentsEnabled = checked; });
    });
    bind(
        model_, this,
        [this, enable] { enable->setChecked(model_.metadataOptions().cvAssignmentsEnabled); },
        &AppModel::metadataOptionsChanged);
    auto* row = new QHBoxLayout;
    row->addWidget(enable);
    row->addStretch();
    row->addWidget(makeLabel(tr("CV1: Filter Cutoff, CV2: Filter Resonance, CV3: Speed"), 12,
                             MarloTheme::FontCut::regular, MarloTheme::muted));
    return row;
}

QLayout* MetadataCard::makeChannelButtons() {
    auto* row = new QHBoxLayout;
    row->setSpacing(4); // at least; as wide as the other columns' gaps in a whole card
    for (int channel = 1; channel <= channelCount; ++channel) {
        auto* button = new ChannelToggleButton(channel);
        row->addWidget(button);
        if (channel < channelCount)
            row->addStretch();
        const auto isAssigned = [this, channel] {
            return model_.metadataOptions().cvAssignedChannels.contains(channel);
        };
        connect(button, &QAbstractButton::clicked, this,
                [this, channel, isAssigned] { model_.setCVChannel(channel, !isAssigned()); });
        bind(
            model_, this,
            [this, button, isAssigned] {
                button->setSelected(isAssigned());
                button->setEnabled(model_.metadataOptions().cvAssignmentsEnabled);
            },
            &AppModel::metadataOptionsChanged);
    }
    return row;
}

} // namespace torvo::app
