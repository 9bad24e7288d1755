// SPDX-License-Identifier: MIT
#include "ui/results/PictureTip.h"

#include "ui/results/PictureFile.h"

#include <QApplication>
#include <QMouseEvent>
#include <QScreen>
#include <QStyle>
#include <QStyleOption>
#include <QStylePainter>
#include <QTimerEvent>
#include <QToolTip>

namespace
{
// As the toolkit's own tool tip has them.
constexpr QPoint besideCursor(2, 16);
constexpr int aboveCursorPixels = 24;
constexpr int leftOfCursorPixels = 4;
constexpr int shownMilliseconds = 10000;
constexpr int leavingMilliseconds = 300;

QPointer<PictureTip> currentTip;
} // namespace

bool PictureTip::showFile(const QString &path,
                          const QPoint &globalPos,
                          QWidget *view,
                          const QRect &cell)
{
    hideTip();
    const qreal ratio = view->devicePixelRatioF();
    PictureFile file(path);
    const QSize size = PictureFile::sizeWithin(file.size(), maxPixels);
    QPixmap picture = QPixmap::fromImage(
        file.readAtSize((QSizeF(size) * ratio).toSize().boundedTo(file.size()).expandedTo(size)));
    if (picture.isNull()) {
        return false;
    }
    picture.setDevicePixelRatio(qreal(picture.width()) / size.width());
    QToolTip::hideText();
    currentTip = new PictureTip(picture, view, cell);
    currentTip->place(globalPos);
    currentTip->show();
    // Not before: what showing a window brings about is no reason to hide it.
    currentTip->watch();
    return true;
}

void PictureTip::hideTip()
{
    if (currentTip != nullptr) {
        currentTip->end();
    }
}

void PictureTip::paintEvent(QPaintEvent *event)
{
    QStyleOptionFrame option;
    option.initFrom(this);
    QStylePainter painter(this);
    painter.drawPrimitive(QStyle::PE_PanelTipLabel, option);
    painter.end();
    QLabel::paintEvent(event);
}

void PictureTip::timerEvent(QTimerEvent *event)
{
    if (event->timerId() == timer.timerId()) {
        end();
        return;
    }
    QLabel::timerEvent(event);
}

bool PictureTip::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Leave:
        leave();
        break;
    case QEvent::WindowActivate:
    case QEvent::WindowDeactivate:
    case QEvent::FocusIn:
    case QEvent::FocusOut:
    case QEvent::Close:
    case QEvent::KeyPress:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::Wheel:
        end();
        break;
    case QEvent::MouseMove:
        if (watched == owner
            && !ownerCell.contains(static_cast<const QMouseEvent *>(event)->pos())) {
            leave();
        }
        break;
    default:
        break;
    }
    return QLabel::eventFilter(watched, event);
}

PictureTip::PictureTip(const QPixmap &picture, QWidget *view, const QRect &cell)
    // Where the screen has no other place for it the picture lies under the cursor.
    : QLabel(view, Qt::ToolTip | Qt::BypassGraphicsProxyWidget | Qt::WindowTransparentForInput)
    , owner(view)
    , ownerCell(cell)
{
    setObjectName(QStringLiteral("pictureTip"));
    setAttribute(Qt::WA_ShowWithoutActivating);
    setPalette(QToolTip::palette());
    setForegroundRole(QPalette::ToolTipText);
    setBackgroundRole(QPalette::ToolTipBase);
    ensurePolished();
    setMargin(1 + style()->pixelMetric(QStyle::PM_ToolTipLabelFrameWidth, nullptr, this));
    setWindowOpacity(style()->styleHint(QStyle::SH_ToolTipLabel_Opacity, nullptr, this) / 255.0);
    setPixmap(picture);
    resize(sizeHint());
}

void PictureTip::place(const QPoint &globalPos)
{
    const QScreen *const screen = QApplication::screenAt(globalPos);
    QPoint corner = globalPos + besideCursor;
    if (screen != nullptr) {
        const QRect area = screen->geometry();
        if (corner.x() + width() > area.right() + 1) {
            corner.rx() -= leftOfCursorPixels + width();
        }
        if (corner.y() + height() > area.bottom() + 1) {
            corner.ry() -= aboveCursorPixels + height();
        }
        corner.setX(qBound(area.left(), corner.x(), qMax(area.left(), area.right() + 1 - width())));
        corner.setY(qBound(area.top(), corner.y(), qMax(area.top(), area.bottom() + 1 - height())));
    }
    move(corner);
}

void PictureTip::watch()
{
    QApplication::instance()->installEventFilter(this);
    timer.start(shownMilliseconds, this);
}

void PictureTip::leave()
{
    if (!isLeaving) {
        isLeaving = true;
        timer.start(leavingMilliseconds, this);
    }
}

void PictureTip::end()
{
    QApplication::instance()->removeEventFilter(this);
    timer.stop();
    hide();
    deleteLater();
    currentTip.clear();
}
