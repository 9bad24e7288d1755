// SPDX-License-Identifier: MIT
#include "ui/results/FilepathDelegate.h"

#include "ui/results/DuplicatedFilesTableModel.h"
#include "ui/results/PathText.h"
#include "ui/results/PictureTip.h"
#include "ui/results/ToolTipText.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QHelpEvent>
#include <QStyle>
#include <QToolTip>

FilepathDelegate::FilepathDelegate(QObject *parent)
    : QStyledItemDelegate(parent)
{
}

QSize FilepathDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const auto *const model = qobject_cast<const DuplicatedFilesTableModel *>(index.model());
    if (model == nullptr) {
        return QStyledItemDelegate::sizeHint(option, index);
    }
    QStyleOptionViewItem item = option;
    item.index = index;
    item.text = displayText(index.data(Qt::DisplayRole), option.locale);
    item.features |= QStyleOptionViewItem::HasDisplay | QStyleOptionViewItem::HasDecoration;
    item.decorationSize = model->decorationSize(index);
    const QVariant font = index.data(Qt::FontRole);
    if (font.isValid()) {
        item.font = font.value<QFont>().resolve(option.font);
        item.fontMetrics = QFontMetrics(item.font);
    }
    const QStyle *const style =
        item.widget != nullptr ? item.widget->style() : QApplication::style();
    return style->sizeFromContents(QStyle::CT_ItemViewItem, &item, QSize(), item.widget);
}

bool FilepathDelegate::helpEvent(QHelpEvent *event,
                                 QAbstractItemView *view,
                                 const QStyleOptionViewItem &option,
                                 const QModelIndex &index)
{
    if (event->type() != QEvent::ToolTip || !index.isValid()
        || qobject_cast<const DuplicatedFilesTableModel *>(index.model()) == nullptr) {
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    }
    const QString path = index.data(Qt::DisplayRole).toString();
    const QRect cell = view->visualRect(index);
    // The model says whether there is a picture. The toolkit is not given its text, which names a file.
    if (index.data(Qt::ToolTipRole).toString() == path
        || !PictureTip::showFile(path, event->globalPos(), view->viewport(), cell)) {
        PictureTip::hideTip();
        QToolTip::showText(event->globalPos(),
                           ToolTipText::ofPath(PathText::shown(path)),
                           view,
                           cell);
    }
    event->accept();
    return true;
}

QString FilepathDelegate::displayText(const QVariant &value, const QLocale &locale) const
{
    return PathText::shown(QStyledItemDelegate::displayText(value, locale));
}

void FilepathDelegate::initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    option->direction = Qt::LeftToRight;
}
