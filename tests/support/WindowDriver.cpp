// SPDX-License-Identifier: MIT
#include "tests/support/WindowDriver.h"

#include "tests/support/ModalDriver.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QFileSystemModel>
#include <QLabel>
#include <QMainWindow>
#include <QStackedWidget>
#include <QStyle>
#include <QStyleOptionViewItem>
#include <QTableView>
#include <QTest>
#include <QTreeView>

namespace
{
bool isCalled(const QWidget *widget, const QString &text)
{
    const auto *const button = qobject_cast<const QAbstractButton *>(widget);
    return widget->accessibleName() == text || (button != nullptr && button->text() == text);
}

QWidget *findByText(const QWidget *window, const QString &text)
{
    for (QWidget *const widget : window->findChildren<QWidget *>()) {
        if (widget->isVisible() && isCalled(widget, text)) {
            return widget;
        }
    }
    return nullptr;
}

// A check box reacts where its mark and its text are, not in the middle of its width.
QPoint placeToClick(const QWidget *widget)
{
    const auto *const button = qobject_cast<const QAbstractButton *>(widget);
    return button != nullptr && button->isCheckable() ? QPoint(10, widget->height() / 2)
                                                      : widget->rect().center();
}

QPoint checkBoxOf(const QAbstractItemView *view, const QModelIndex &index)
{
    QStyleOptionViewItem option;
    option.initFrom(view);
    option.rect = view->visualRect(index);
    option.features = QStyleOptionViewItem::HasCheckIndicator;
    if (!index.data(Qt::DecorationRole).isNull()) {
        option.features |= QStyleOptionViewItem::HasDecoration;
    }
    return view->style()
        ->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, view)
        .center();
}

void clickCheckBox(QAbstractItemView *view, const QModelIndex &index)
{
    view->scrollTo(index);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, Qt::NoModifier, checkBoxOf(view, index));
}

// The model knows the folders on the way to a path before it has loaded what stands beside them; a
// tick would then be one of all that is above.
bool hasSiblings(const QFileSystemModel &model, const QModelIndex &folder)
{
    const int rows = model.rowCount(folder);
    const QDir dir(model.filePath(folder));
    return rows > 1
        || (rows == 1 && dir.entryList(QDir::AllDirs | QDir::NoDotAndDotDot).size() == 1);
}
} // namespace

WindowDriver::WindowDriver(QWidget *mainWindow, ModalDriver *modalDriver)
    : window(mainWindow)
    , boxes(modalDriver)
{
}

bool WindowDriver::fail(const QString &what)
{
    lastProblem = what;
    return false;
}

QStackedWidget *WindowDriver::pages() const
{
    return qobject_cast<QMainWindow *>(window)->centralWidget()->findChild<QStackedWidget *>(
        QString(),
        Qt::FindDirectChildrenOnly);
}

int WindowDriver::page() const
{
    return pages()->currentIndex();
}

bool WindowDriver::waitForPage(int index)
{
    return QTest::qWaitFor([&] { return page() == index; }, maxWaitMilliseconds)
        || fail(QStringLiteral("page %1 did not come").arg(index));
}

bool WindowDriver::clickIn(QWidget *where, const QString &text)
{
    QWidget *const widget = findByText(where, text);
    if (widget == nullptr || !widget->isEnabled()) {
        return false;
    }
    QTest::mouseClick(widget, Qt::LeftButton, Qt::NoModifier, placeToClick(widget));
    return true;
}

bool WindowDriver::click(const QString &text)
{
    return clickIn(window, text)
        || fail(QStringLiteral("\"%1\" is not there to be clicked").arg(text));
}

bool WindowDriver::isEnabled(const QString &text) const
{
    const QWidget *const widget = findByText(window, text);
    return widget != nullptr && widget->isEnabled();
}

bool WindowDriver::waitUntilEnabled(const QString &text)
{
    return QTest::qWaitFor([&] { return isEnabled(text); }, maxWaitMilliseconds)
        || fail(QStringLiteral("\"%1\" was not enabled").arg(text));
}

bool WindowDriver::shows(const QString &text) const
{
    for (const QLabel *const label : window->findChildren<QLabel *>()) {
        if (label->isVisible() && label->text().contains(text)) {
            return true;
        }
    }
    return false;
}

bool WindowDriver::waitUntilShown(const QString &text)
{
    return QTest::qWaitFor([&] { return shows(text); }, maxWaitMilliseconds)
        || fail(QStringLiteral("\"%1\" was not shown").arg(text));
}

bool WindowDriver::chooseFolder(const QString &path)
{
    boxes->expectFileDialog(QStringLiteral("Choose Directory"), path);
    if (!click(QStringLiteral("Select folder..."))) {
        return false;
    }
    return boxes->failures().isEmpty() || fail(boxes->failures().join(QStringLiteral("; ")));
}

QTreeView *WindowDriver::tree() const
{
    return pages()->widget(0)->findChild<QTreeView *>();
}

Qt::CheckState WindowDriver::folderState(const QString &path) const
{
    const auto *const model = qobject_cast<const QFileSystemModel *>(tree()->model());
    return model->index(path).data(Qt::CheckStateRole).value<Qt::CheckState>();
}

bool WindowDriver::tickFolder(const QString &path)
{
    auto *const model = qobject_cast<QFileSystemModel *>(tree()->model());
    // Folders load in the background and push the rows about: the row must stand still, with every
    // row above it loaded.
    QRect last;
    const bool settled = QTest::qWaitFor(
        [&] {
            const QModelIndex index = model->index(path);
            bool loaded = index.isValid();
            for (QModelIndex up = index.parent(); loaded && up.isValid(); up = up.parent()) {
                loaded = !model->canFetchMore(up) && hasSiblings(*model, up);
                if (loaded && !tree()->isExpanded(up)) {
                    tree()->scrollTo(index);
                    loaded = false;
                }
            }
            const QRect rect = tree()->visualRect(index);
            const bool still = loaded && rect == last && !rect.isEmpty();
            last = rect;
            QTest::qWait(20); // between two looks
            return still;
        },
        maxWaitMilliseconds);
    if (!settled) {
        return fail(QStringLiteral("the tree does not show %1").arg(path));
    }
    clickCheckBox(tree(), model->index(path));
    return true;
}

QTableView *WindowDriver::table() const
{
    return pages()->widget(2)->findChild<QTableView *>();
}

QStringList WindowDriver::column(int column) const
{
    const QAbstractItemModel *const model = table()->model();
    QStringList texts;
    for (int row = 0; row < model->rowCount(); ++row) {
        texts.append(model->index(row, column).data().toString());
    }
    return texts;
}

bool WindowDriver::clickRow(int row)
{
    const QModelIndex index = table()->model()->index(row, 0);
    if (!index.isValid()) {
        return fail(QStringLiteral("the results have no row %1").arg(row));
    }
    clickCheckBox(table(), index);
    return true;
}

QWidget *WindowDriver::otherWindow(const char *className) const
{
    for (QWidget *const widget : QApplication::topLevelWidgets()) {
        if (widget->isVisible() && widget->inherits(className)) {
            return widget;
        }
    }
    return nullptr;
}
