// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QModelIndex>
#include <QString>
#include <QStringList>

class QAbstractButton;
class QAbstractItemView;
class QRect;
class QWidget;

/**
 * Measures in a picture of a window how far its texts and ticks stand out from what is behind them.
 * What cannot be read stands in problems(), one a line.
 */
class ContrastReader final
{
public:
    static constexpr double enough = 4.5;
    /** For large figures in a colour of their own. */
    static constexpr double enoughForLargeTexts = 3.0;

    explicit ContrastReader(QWidget *window);

    /** Of all that is visible in a window now; a window without any text has a problem. */
    static QString problemsOf(QWidget *window);

    void readAll();
    /** Looks at a place of a widget, and names it by what should be there. */
    void measure(const QWidget *widget, const QRect &place, const QString &what, double needed);

    QString problems() const { return all.join(QLatin1Char('\n')); }
    int textsRead() const { return texts; }

private:
    void read(QWidget *widget);
    void readButton(const QAbstractButton *button);
    void readView(QAbstractItemView *view);
    void readCell(QAbstractItemView *view, const QModelIndex &index);

    QWidget *window;
    QImage picture;
    QStringList all;
    QList<QModelIndex> cells;
    int texts = 0;
};
