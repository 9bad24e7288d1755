// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QtGlobal>

class QTableView;

/**
 * What a user sees while files move and no event is looked at: a wait cursor, from its making to its
 * end, and rows that turn red as their files go.
 */
class MovingScreen final
{
    Q_DISABLE_COPY(MovingScreen)

public:
    explicit MovingScreen(QTableView *tableView);
    ~MovingScreen();

    /**
     * To be called before the first file moves: lets a box that has just been answered leave the
     * screen, and what lay below it be painted. Takes a tenth of a second; what the user does
     * meanwhile is looked at later.
     */
    void letBoxesGo() const;
    /** To be called after each file. Paints the rows as often as an eye can tell apart. */
    void showProgress();

private:
    QTableView *table;
    QElapsedTimer sinceRows;
};
