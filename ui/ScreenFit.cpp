// SPDX-License-Identifier: MIT
#include "ui/ScreenFit.h"

#include <QEvent>
#include <QGuiApplication>
#include <QLayout>
#include <QRegion>
#include <QScreen>
#include <QWidget>
#include <QWindow>

namespace
{
// Two margins of one axis, cut back until the contents keep their minimum: first at the end.
void keepMinimum(int whole, int minimum, int *before, int *after)
{
    const int room = qMax(0, whole - minimum);
    *before = qMin(*before, room);
    *after = qMin(*after, room - *before);
}

QList<QRect> availableScreens(const QWidget *window)
{
    const QWindow *const handle = window->windowHandle();
    const QScreen *screen = handle != nullptr ? handle->screen() : nullptr;
    if (screen == nullptr) {
        screen = QGuiApplication::primaryScreen();
    }
    QList<QRect> screens;
    if (screen != nullptr) {
        for (const QScreen *const sibling : screen->virtualSiblings()) {
            screens.append(sibling->availableGeometry());
        }
    }
    return screens;
}
} // namespace

ScreenFit::ScreenFit(QWidget *widget)
    : QObject(widget)
    , window(widget)
{
    window->installEventFilter(this);
    connect(qGuiApp, &QGuiApplication::screenAdded, this, [this](QScreen *screen) {
        watch(screen);
        follow();
    });
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, &ScreenFit::follow);
    for (QScreen *const screen : QGuiApplication::screens()) {
        watch(screen);
    }
}

QRect ScreenFit::visiblePart(const QRect &rect, const QList<QRect> &screens)
{
    QRegion hidden = rect;
    QRect largest;
    for (const QRect &screen : screens) {
        hidden -= screen;
        const QRect shown = rect & screen;
        const qint64 area = qint64(shown.width()) * shown.height();
        if (!shown.isEmpty() && area > qint64(largest.width()) * largest.height()) {
            largest = shown;
        }
    }
    return hidden.isEmpty() ? rect : largest;
}

bool ScreenFit::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::Show:
    case QEvent::WindowStateChange:
        follow();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

void ScreenFit::watch(QScreen *screen) const
{
    connect(screen, &QScreen::availableGeometryChanged, this, &ScreenFit::follow);
    connect(screen, &QScreen::geometryChanged, this, &ScreenFit::follow);
}

void ScreenFit::follow()
{
    if (!window->isVisible() || window->isMinimized()) {
        return;
    }
    const QRect whole = window->geometry();
    const QRect visible = visiblePart(whole, availableScreens(window));
    if (visible.isEmpty()) {
        return;
    }
    int left = visible.left() - whole.left();
    int top = visible.top() - whole.top();
    int right = whole.right() - visible.right();
    int bottom = whole.bottom() - visible.bottom();
    const QMargins now = window->contentsMargins();
    const QSize minimum = window->layout()->totalMinimumSize()
        - QSize(now.left() + now.right(), now.top() + now.bottom());
    keepMinimum(whole.width(), minimum.width(), &left, &right);
    keepMinimum(whole.height(), minimum.height(), &top, &bottom);
    window->setContentsMargins(left, top, right, bottom);
}
