// SPDX-License-Identifier: MIT
#include "tests/app/ContrastReader.h"

#include "ui/LightPalette.h"
#include "ui/progress/ClickableLabel.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QComboBox>
#include <QFontInfo>
#include <QFontMetrics>
#include <QHash>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QProgressBar>
#include <QStyle>
#include <QStyleOptionButton>
#include <QStyleOptionViewItem>

namespace
{
constexpr int largeTextPixels = 24;

QColor groundOf(const QImage &image)
{
    QHash<QRgb, int> counts;
    QRgb most = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            if (++counts[pixel] > counts.value(most)) {
                most = pixel;
            }
        }
    }
    return QColor(most);
}

// Of what stands out most from the ground, which is the inside of the strokes of a text.
double contrastIn(const QImage &image)
{
    const QColor ground = groundOf(image);
    double best = 1.0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            best = qMax(best, LightPalette::contrast(ground, image.pixelColor(x, y)));
        }
    }
    return best;
}
} // namespace

ContrastReader::ContrastReader(QWidget *where)
    : window(where)
    , picture(where->grab().toImage())
{
}

QString ContrastReader::problemsOf(QWidget *window)
{
    ContrastReader reader(window);
    reader.readAll();
    return reader.textsRead() > 0 ? reader.problems() : QStringLiteral("there is no text");
}

void ContrastReader::readAll()
{
    for (QWidget *const widget : window->findChildren<QWidget *>()) {
        if (widget->isVisible() && widget->window() == window) {
            read(widget);
        }
    }
}

void ContrastReader::measure(const QWidget *widget,
                             const QRect &place,
                             const QString &what,
                             double needed)
{
    const QRect seen = QRect(widget->mapTo(window, place.topLeft()), place.size()) & picture.rect()
        & QRect(widget->mapTo(window, QPoint(0, 0)), widget->size());
    if (seen.width() < 4 || seen.height() < 4) {
        return;
    }
    ++texts;
    const double contrast = contrastIn(picture.copy(seen));
    if (contrast < needed) {
        all.append(QStringLiteral("%1 \"%2\": %3")
                       .arg(QLatin1String(widget->metaObject()->className()), what)
                       .arg(contrast, 0, 'f', 2));
    }
}

void ContrastReader::read(QWidget *widget)
{
    if (const auto *const label = qobject_cast<QLabel *>(widget)) {
        if (!label->text().isEmpty()) {
            const bool isLarge = label->fontInfo().pixelSize() >= largeTextPixels;
            measure(label, label->rect(), label->text(), isLarge ? enoughForLargeTexts : enough);
        }
    } else if (const auto *const button = qobject_cast<QAbstractButton *>(widget)) {
        readButton(button);
    } else if (const auto *const clickable = qobject_cast<ClickableLabel *>(widget)) {
        const int width = QFontMetrics(QFont()).horizontalAdvance(clickable->accessibleName());
        if (clickable->width() > clickable->height()) {
            const QRect right(clickable->width() - width, 2, width, clickable->height() - 4);
            measure(clickable, right, clickable->accessibleName(), enough);
        }
    } else if (const auto *const edit = qobject_cast<QLineEdit *>(widget)) {
        if (!edit->text().isEmpty()) {
            measure(edit, edit->rect().adjusted(3, 3, -3, -3), edit->text(), enough);
        }
    } else if (const auto *const box = qobject_cast<QComboBox *>(widget)) {
        measure(box, box->rect().adjusted(4, 4, -20, -4), box->currentText(), enough);
    } else if (auto *const view = qobject_cast<QAbstractItemView *>(widget)) {
        readView(view);
    } else if (const auto *const bar = qobject_cast<QProgressBar *>(widget)) {
        const QRect middle(bar->width() / 2 - 15, 2, 30, bar->height() - 4);
        measure(bar, bar->maximum() > 0 ? middle : QRect(), bar->text(), enough);
    } else if (const auto *const menus = qobject_cast<QMenuBar *>(widget)) {
        const QRect place = menus->actionGeometry(menus->actions().constFirst());
        measure(menus, place, QStringLiteral("menu"), enough);
    }
}

void ContrastReader::readButton(const QAbstractButton *button)
{
    const QStyle *const style = button->style();
    QStyleOptionButton option;
    option.initFrom(button);
    if (button->isCheckable()) {
        const bool isRadio = button->inherits("QRadioButton");
        const QRect text = style->subElementRect(isRadio ? QStyle::SE_RadioButtonContents
                                                         : QStyle::SE_CheckBoxContents,
                                                 &option,
                                                 button);
        measure(button, text, button->text(), enough);
        if (button->isChecked()) {
            const QRect mark = style->subElementRect(isRadio ? QStyle::SE_RadioButtonIndicator
                                                             : QStyle::SE_CheckBoxIndicator,
                                                     &option,
                                                     button);
            measure(button, mark.adjusted(3, 3, -3, -3), QStringLiteral("tick"), enough);
        }
    } else if (!button->text().isEmpty()) {
        // Behind the icon that may stand before the text.
        const int half = button->width() / 2;
        measure(button, QRect(half, 4, half - 4, button->height() - 8), button->text(), enough);
    }
}

void ContrastReader::readView(QAbstractItemView *view)
{
    const QAbstractItemModel *const model = view->model();
    const auto *const header = qobject_cast<QHeaderView *>(view);
    if (model == nullptr || header != nullptr) {
        return;
    }
    for (int y = 5; y < view->viewport()->height(); y += 10) {
        for (int x = 5; x < view->viewport()->width(); x += 20) {
            const QModelIndex index = view->indexAt(QPoint(x, y));
            if (index.isValid() && !cells.contains(index)) {
                cells.append(index);
                readCell(view, index);
            }
        }
    }
}

void ContrastReader::readCell(QAbstractItemView *view, const QModelIndex &index)
{
    QStyleOptionViewItem option;
    option.initFrom(view);
    option.widget = view;
    option.rect = view->visualRect(index);
    const QString text = index.data().toString();
    const QVariant state = index.data(Qt::CheckStateRole);
    if (state.isValid()) {
        option.features |= QStyleOptionViewItem::HasCheckIndicator;
        const QRect mark =
            view->style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, view);
        // A partial one fills its box.
        const int border = state.toInt() == Qt::Checked ? 3 : 0;
        if (state.toInt() != Qt::Unchecked) {
            measure(view->viewport(),
                    mark.adjusted(border, border, -border, -border),
                    text + QStringLiteral(" tick"),
                    enough);
        }
    }
    if (!text.isEmpty()) {
        // Names of two letters are as narrow as the pictures of the table.
        const int pictureWidth = view->inherits("QTreeView") ? 20 : 40;
        const int before = index.data(Qt::DecorationRole).isNull() ? 0 : pictureWidth;
        measure(view->viewport(),
                option.rect.adjusted(before + (state.isValid() ? 24 : 0), 1, -1, -1),
                text,
                enough);
    }
}
