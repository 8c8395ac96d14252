#include "Controls/ChannelToggleButton.h"
#include "Support/ContentViewFixture.h"

#include <QAccessible>
#include <QCheckBox>
#include <QComboBox>
#include <QTest>
#include <gtest/gtest.h>

#include <array>
#include <string>

using namespace torvo;
using namespace torvo::app;
using namespace torvo::test;

namespace {

class MetadataCardTest : public testing::Test, protected ContentViewFixture {};

} // namespace

TEST_F(MetadataCardTest, offersTheSettingsOfTheDevice) {
    for (const char* text :
         {"METADATA", "Globally Applied Metadata", "BITS", "RATE", "FILTER", "Per-Channel Metadata",
          "CV1: Filter Cutoff, CV2: Filter Resonance, CV3: Speed"})
        EXPECT_TRUE(shows(text)) << text;
    const auto boxes = showing<QComboBox>();
    ASSERT_EQ(boxes.size(), 3U);
    const auto options = [](const QComboBox& box) {
        QStringList texts;
        for (int index = 0; index < box.count(); ++index)
            texts.append(box.itemText(index));
        return texts.join(QLatin1Char(' ')).toStdString();
    };
    EXPECT_EQ(options(*boxes[0]), "1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16");
    EXPECT_EQ(options(*boxes[1]), "4 6 7 9 11 14 22 44");
    EXPECT_EQ(options(*boxes[2]), "Off LP BP NT HP");
    EXPECT_EQ(boxes[0]->currentText(), QStringLiteral("16"));
    EXPECT_EQ(boxes[1]->currentText(), QStringLiteral("44"));
    EXPECT_EQ(boxes[2]->currentText(), QStringLiteral("Off"));
    EXPECT_EQ(boxes[0]->accessibleName(), QStringLiteral("Bits"));
    EXPECT_EQ(boxes[1]->accessibleName(), QStringLiteral("Rate"));
    EXPECT_EQ(boxes[2]->accessibleName(), QStringLiteral("Filter"));
    // The accessible name of a combo box is its current choice; its purpose is its label.
    for (std::size_t index = 0; const char* caption : {"BITS", "RATE", "FILTER"}) {
        QAccessibleInterface* box = QAccessible::queryAccessibleInterface(boxes[index++]);
        const auto labels = box->relations(QAccessible::Label);
        ASSERT_EQ(labels.size(), 1) << caption;
        EXPECT_EQ(labels[0].first->text(QAccessible::Name).toStdString(), caption);
    }
}

TEST_F(MetadataCardTest, writesTheChosenSettings) {
    const auto boxes = showing<QComboBox>();
    QTest::keyClick(boxes[0], Qt::Key_Up);
    QTest::keyClick(boxes[1], Qt::Key_Home);
    QTest::keyClick(boxes[2], Qt::Key_End);
    EXPECT_EQ(model.metadataOptions(), TorvoMetadataOptions(15, TorvoPlaybackRate::rate4,
                                                            TorvoFilterType::highPass, false, {}));
    model.setMetadataOptions({1, TorvoPlaybackRate::rate9, TorvoFilterType::notch, true, {2}});
    EXPECT_EQ(boxes[0]->currentText(), QStringLiteral("1"));
    EXPECT_EQ(boxes[1]->currentText(), QStringLiteral("9"));
    EXPECT_EQ(boxes[2]->currentText(), QStringLiteral("NT"));
    EXPECT_TRUE(showing<QCheckBox>().front()->isChecked());
    EXPECT_TRUE(button("2")->isChecked());
}

TEST_F(MetadataCardTest, togglesEachChannel) {
    const auto buttons = showing<ChannelToggleButton>();
    ASSERT_EQ(buttons.size(), 8U);
    EXPECT_FALSE(buttons[0]->isEnabled());
    auto* enable = showing<QCheckBox>().front();
    EXPECT_EQ(enable->text(), QStringLiteral("ENABLE CV ASSIGNMENTS"));
    QTest::keyClick(enable, Qt::Key_Space);
    EXPECT_TRUE(model.metadataOptions().cvAssignmentsEnabled);
    for (int channel = 1; channel <= 8; ++channel) {
        auto* toggle = buttons[static_cast<std::size_t>(channel) - 1];
        EXPECT_EQ(toggle->text(), QString::number(channel));
        press(toggle);
        EXPECT_TRUE(toggle->isChecked());
        EXPECT_EQ(model.metadataOptions().cvAssignedChannels, std::set<std::int64_t>{channel});
        press(toggle);
        EXPECT_FALSE(toggle->isChecked());
        EXPECT_TRUE(model.metadataOptions().cvAssignedChannels.empty());
    }
}

TEST_F(MetadataCardTest, explainsItsSettings) {
    const auto boxes = showing<QComboBox>();
    const std::array<const char*, 3> explanations{
        "Playback bit depth: fewer bits, more grit", "Playback sample rate in kHz",
        "Off: no filter\nLP: low pass\nBP: band pass\nNT: notch\nHP: high pass"};
    const auto described = [](QWidget* widget) {
        return QAccessible::queryAccessibleInterface(widget)
            ->text(QAccessible::Description)
            .toStdString();
    };
    for (std::size_t index = 0; const char* caption : {"BITS", "RATE", "FILTER"}) {
        EXPECT_EQ(boxes[index]->toolTip().toStdString(), explanations[index]);
        EXPECT_EQ(described(boxes[index]), explanations[index]);
        EXPECT_EQ(label(QString::fromLatin1(caption))->toolTip(), boxes[index]->toolTip());
        ++index;
    }
    EXPECT_TRUE(described(showing<QCheckBox>().front()).find("CV1 controls the filter cutoff") !=
                std::string::npos);
    const auto optionsOf = [](const QComboBox& box, int role) {
        QStringList texts;
        for (int index = 0; index < box.count(); ++index)
            texts.append(box.itemData(index, role).toString());
        return texts.join(QStringLiteral(", ")).toStdString();
    };
    for (const int role : {Qt::ToolTipRole, Qt::AccessibleDescriptionRole}) {
        EXPECT_EQ(optionsOf(*boxes[1], role),
                  "4 kHz, 6 kHz, 7 kHz, 9 kHz, 11 kHz, 14 kHz, 22 kHz, 44 kHz");
        EXPECT_EQ(optionsOf(*boxes[2], role), "no filter, low pass, band pass, notch, high pass");
    }
}
