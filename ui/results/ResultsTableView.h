// SPDX-License-Identifier: MIT
#pragma once

#include <QTableView>

/**
 * A table whose horizontal position only the user changes: by its scroll bar, by the wheel, and by
 * the left and right arrow keys, which move no current cell where rows are selected whole.
 */
class ResultsTableView final : public QTableView
{
    Q_OBJECT
    Q_DISABLE_COPY(ResultsTableView)

public:
    explicit ResultsTableView(QWidget *parent);

    void scrollTo(const QModelIndex &index, ScrollHint hint = EnsureVisible) override;

protected:
    void keyPressEvent(QKeyEvent *event) override;
};
