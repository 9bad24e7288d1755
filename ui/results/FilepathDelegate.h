// SPDX-License-Identifier: MIT
#pragma once

#include <QStyledItemDelegate>

/**
 * The column of paths in the results table.
 *
 * A view sizes a column by up to a thousand of its rows, on screen or not; this delegate answers
 * without having their pictures decoded. Its tool tips show the picture of the row's own file, and any
 * file name as it reads.
 */
class FilepathDelegate final : public QStyledItemDelegate
{
    Q_OBJECT
    Q_DISABLE_COPY(FilepathDelegate)

public:
    explicit FilepathDelegate(QObject *parent);

    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    bool helpEvent(QHelpEvent *event,
                   QAbstractItemView *view,
                   const QStyleOptionViewItem &option,
                   const QModelIndex &index) override;
    /** See PathText. */
    QString displayText(const QVariant &value, const QLocale &locale) const override;

protected:
    /** A path reads from its slash, also where the language reads from the right. */
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override;
};
