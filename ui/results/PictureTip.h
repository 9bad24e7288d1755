// SPDX-License-Identifier: MIT
#pragma once

#include <QBasicTimer>
#include <QLabel>
#include <QPointer>
#include <QRect>

/**
 * A tool tip that shows a picture, with the look, the place and the end of the toolkit's own.
 *
 * That one takes a text alone, and opens what the text names once more: another file where the name
 * has a "%" or a "#" in it, and anything at all where a file has changed since. This one paints
 * what PictureFile has read. There is one at a time; it belongs to its view and deletes itself.
 */
class PictureTip final : public QLabel
{
    Q_OBJECT
    Q_DISABLE_COPY(PictureTip)

public:
    /** Pixels of the longer side, at most. */
    static constexpr int maxPixels = 500;

    /**
     * Shows the picture in the file of now beside the point, until the mouse leaves the cell. False,
     * and nothing shown, if there is none. Decodes.
     */
    static bool showFile(const QString &path,
                         const QPoint &globalPos,
                         QWidget *view,
                         const QRect &cell);
    static void hideTip();

protected:
    void paintEvent(QPaintEvent *event) override;
    void timerEvent(QTimerEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    PictureTip(const QPixmap &picture, QWidget *view, const QRect &cell);
    void place(const QPoint &globalPos);
    void watch();
    void leave();
    void end();

    QWidget *owner;
    QRect ownerCell;
    QBasicTimer timer;
    bool isLeaving = false;
};
