#include "Views/HeaderView.h"

#include "Binding.h"
#include "Controls/Labels.h"
#include "Controls/LinkButton.h"
#include "Logo.h"
#include "Maker.h"
#include "Views/LogoView.h"

#include <QDesktopServices>
#include <QHBoxLayout>
#include <QLabel>
#include <QUrl>

namespace torvo::app {

namespace {

QString tagline(GenerationMode mode) {
    switch (mode) {
    case GenerationMode::drums:
        return HeaderView::tr("Drop in a folder of drum chaos. It finds the drums, jumbles them "
                              "into playable random banks, and outputs QZT508-ready sets.");
    case GenerationMode::loops:
        return HeaderView::tr("Drop in a folder of loops. It scatters everything into playable "
                              "random banks and outputs QZT508-ready sets.");
    case GenerationMode::stabs:
        return HeaderView::tr("Drop in a folder of one-shots. It scatters everything into playable "
                              "random banks and outputs QZT508-ready sets.");
    }
    return {};
}

QUrl halvorineURL() {
    return {QString::fromLatin1(makerURL)};
}

} // namespace

HeaderView::HeaderView(AppModel& model, QWidget* parent) : QWidget(parent) {
    auto* title = makeLabel(tr("TORVO QUASTLE BANK GENERATOR"), 30, MarloTheme::FontCut::bold,
                            MarloTheme::ink);
    auto* description = makeLabel({}, 13, MarloTheme::FontCut::regular, MarloTheme::muted);
    description->setWordWrap(true);
    description->setAlignment(Qt::AlignLeft | Qt::AlignTop);

    auto* logo = new LogoView(loadHalvorineLogoImage());
    auto* maker = new LinkButton(QString::fromLatin1(makerName));
    maker->setToolTip(halvorineURL().toString());
    connect(maker, &QAbstractButton::clicked, this,
            [] { QDesktopServices::openUrl(halvorineURL()); });

    auto* words = new QVBoxLayout;
    words->setSpacing(2);
    words->addWidget(title);
    words->addWidget(description);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(MarloTheme::grid);
    row->addLayout(words, 1);
    row->addSpacing(2 * MarloTheme::grid);
    row->addWidget(logo, 0, Qt::AlignVCenter);
    row->addWidget(maker, 0, Qt::AlignVCenter);

    bind(
        model, this,
        [&model, description] { description->setText(tagline(model.generationMode())); },
        &AppModel::generationModeChanged);
}

} // namespace torvo::app
