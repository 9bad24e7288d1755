// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QObject>
#include <QRect>

class QScreen;
class QWidget;

/**
 * Keeps the contents of a window on the screen when the window itself is larger than what the screen
 * can show: contents margins hold the part of it beside the screen's available geometry free
 * of controls. Where screens show all of the window, its margins are 0.
 *
 * Follows moves, resizes, and changes of screens and of their work areas. The contents are never
 * made smaller than their layout's minimum. Lives on the GUI thread, owned by the window.
 */
class ScreenFit final : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(ScreenFit)

public:
    /** The window has a layout, and no contents margins of its own. */
    explicit ScreenFit(QWidget *widget);

    /**
     * The part of a rectangle to put contents in: all of it where the screens cover it together,
     * else what the one screen shows that shows the most of it, else nothing (an invalid rectangle).
     */
    static QRect visiblePart(const QRect &rect, const QList<QRect> &screens);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void watch(QScreen *screen) const;
    void follow();

    QWidget *window;
};
