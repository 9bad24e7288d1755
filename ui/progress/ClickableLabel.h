// SPDX-License-Identifier: MIT
#pragma once

#include "ui/QtCompat.h"

#include <QColor>
#include <QFont>
#include <QPixmap>
#include <QString>
#include <QWidget>

/**
 * The program's own button: an icon, a caption, and a rounded highlight under the mouse.
 *
 * The caption is drawn with the text font, never with the font of the widget. The caption is also
 * the accessible name; a label without one gets its name from whoever makes it.
 */
class ClickableLabel final : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(ClickableLabel)

public:
    explicit ClickableLabel(const QString &caption, QWidget *parent = nullptr);

    /** Each of these also fits the minimum size to what is shown. */
    void setText(const QString &newText);
    void setTextFont(const QFont &font);
    void setPixmap(const QPixmap &newPixmap);
    /** Sets the minimum size; the size itself is left to the layout. */
    void adjustSize();
    /** Emits clicked() unless the label is disabled. */
    void click();

    /** The size in which the caption is shown whole; a little wider than the minimum. */
    QSize sizeHint() const override;

    /** The colour of the caption; black while it is invalid. */
    QColor textColor;

signals:
    /** A press of any mouse button, or Space or Return while the label has the focus. */
    void clicked();

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void enterEvent(QtCompat::EnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    /** Logical pixels; empty without an icon. */
    QSize iconSize() const;
    void paintHighlight(QPainter *painter) const;
    void paintCaption(QPainter *painter) const;
    void paintFocus(QPainter *painter) const;

    QString text;
    QPixmap pixmap;
    QFont textFont;
    bool hovered = false;
};
