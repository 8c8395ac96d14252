#include "Controls/PanelIcons.h"

#include "MarloTheme.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QPolygonF>

namespace torvo::app {

namespace {

/// All pictures are drawn on a square of this size and then scaled.
constexpr int side = 16;

void paintFolder(QPainter& painter) {
    QPainterPath folder({1.5, 4.5});
    for (const QPointF point : {QPointF(1.5, 2.5), QPointF(6.5, 2.5), QPointF(8, 4.5),
                                QPointF(14.5, 4.5), QPointF(14.5, 13.5), QPointF(1.5, 13.5)})
        folder.lineTo(point);
    folder.closeSubpath();
    painter.setPen(QPen(MarloTheme::accent, 1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(MarloTheme::accent);
    painter.drawPath(folder);
}

void paintFile(QPainter& painter) {
    painter.drawPolygon(QPolygonF{{3.5, 1.5}, {9.5, 1.5}, {12.5, 4.5}, {12.5, 14.5}, {3.5, 14.5}});
    painter.drawPolyline(QPolygonF{{9.5, 1.5}, {9.5, 4.5}, {12.5, 4.5}});
}

void paintDrive(QPainter& painter) {
    painter.drawRoundedRect(QRectF(1.5, 4.5, 13, 8), 1.5, 1.5);
    painter.drawLine(QPointF(4, 9.5), QPointF(9, 9.5));
    painter.drawPoint(QPointF(12, 9.5));
}

/// An arrow to the left, turned by `degrees`.
void paintArrow(QPainter& painter, double degrees) {
    painter.translate(side / 2.0, side / 2.0);
    painter.rotate(degrees);
    painter.drawLine(QPointF(-5, 0), QPointF(5, 0));
    painter.drawPolyline(QPolygonF{{-1, -4}, {-5, 0}, {-1, 4}});
}

void paintNewFolder(QPainter& painter) {
    painter.drawPolyline(QPolygonF{
        {8, 13.5}, {1.5, 13.5}, {1.5, 2.5}, {6, 2.5}, {7.5, 4.5}, {14.5, 4.5}, {14.5, 7}});
    painter.drawLine(QPointF(12, 9), QPointF(12, 15));
    painter.drawLine(QPointF(9, 12), QPointF(15, 12));
}

void paintTiles(QPainter& painter) {
    for (const double x : {2.5, 9.5})
        for (const double y : {2.5, 9.5})
            painter.drawRect(QRectF(x, y, 4, 4));
}

void paintLines(QPainter& painter) {
    for (const double y : {3.5, 8.0, 12.5})
        painter.drawLine(QPointF(2.5, y), QPointF(13.5, y));
}

/// False for a picture that the theme does not have.
bool paintPicture(QPainter& painter, QStyle::StandardPixmap picture) {
    switch (picture) {
    case QStyle::SP_DirIcon:
    case QStyle::SP_DirOpenIcon:
    case QStyle::SP_DirClosedIcon:
    case QStyle::SP_DirLinkIcon:
    case QStyle::SP_DirHomeIcon:
        paintFolder(painter);
        return true;
    case QStyle::SP_FileIcon:
    case QStyle::SP_FileLinkIcon:
        paintFile(painter);
        return true;
    case QStyle::SP_ComputerIcon:
    case QStyle::SP_DriveHDIcon:
        paintDrive(painter);
        return true;
    case QStyle::SP_FileDialogBack:
    case QStyle::SP_ArrowBack:
        paintArrow(painter, 0);
        return true;
    case QStyle::SP_FileDialogToParent:
        paintArrow(painter, 90);
        return true;
    case QStyle::SP_ArrowForward:
        paintArrow(painter, 180);
        return true;
    case QStyle::SP_FileDialogNewFolder:
        paintNewFolder(painter);
        return true;
    case QStyle::SP_FileDialogListView:
        paintTiles(painter);
        return true;
    case QStyle::SP_FileDialogDetailedView:
        paintLines(painter);
        return true;
    default:
        return false;
    }
}

} // namespace

QIcon panelIcon(QStyle::StandardPixmap picture) {
    QIcon icon;
    for (const int size : {16, 24, 32, 48, 64}) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(size / static_cast<double>(side), size / static_cast<double>(side));
        painter.setPen(QPen(MarloTheme::muted, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        if (!paintPicture(painter, picture))
            return {};
        painter.end();
        icon.addPixmap(pixmap);
        // The colour of the text of a selected row.
        QPainter selected(&pixmap);
        selected.setCompositionMode(QPainter::CompositionMode_SourceIn);
        selected.fillRect(pixmap.rect(), MarloTheme::surface);
        selected.end();
        icon.addPixmap(pixmap, QIcon::Selected);
    }
    return icon;
}

} // namespace torvo::app
