// SPDX-License-Identifier: MIT
#include "tests/ui/config/FolderTreeDriver.h"

#include "tests/support/ModalDriver.h"
#include "tests/ui/config/FolderLoads.h"
#include "ui/config/FileSystemTreeModel.h"
#include "ui/config/FileSystemTreeWidget.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QStyleOptionViewItem>
#include <QTest>
#include <QTreeView>

#include <algorithm>

FolderTreeDriver::FolderTreeDriver(QWidget *ancestor)
    : above(ancestor)
{
}

QTreeView *FolderTreeDriver::view() const
{
    return above->findChild<QTreeView *>();
}

FileSystemTreeModel *FolderTreeDriver::model() const
{
    return qobject_cast<FileSystemTreeModel *>(view()->model());
}

QPushButton *FolderTreeDriver::button() const
{
    for (QPushButton *const candidate : above->findChildren<QPushButton *>()) {
        if (candidate->text() == QLatin1String("Select folder...")) {
            return candidate;
        }
    }
    return nullptr;
}

QWidget *FolderTreeDriver::warning() const
{
    for (const QLabel *const label : above->findChildren<QLabel *>()) {
        if (label->text().startsWith(QLatin1String("<b>You have selected one of the system"))) {
            return label->parentWidget();
        }
    }
    return nullptr;
}

QStringList FolderTreeDriver::choose(const QString &folder)
{
    ModalDriver modals;
    modals.expectFileDialog(QStringLiteral("Choose Directory"), folder);
    QTest::mouseClick(button(), Qt::LeftButton);
    QStringList failures = modals.failures();
    if (failures.isEmpty() && model() == nullptr) {
        failures.append(QStringLiteral("there is no tree"));
    }
    if (failures.isEmpty()) {
        // The loading thread reports through the event loop, so nothing has been missed.
        loads = new FolderLoads(model());
        loads->setParent(this);
    }
    return failures;
}

bool FolderTreeDriver::isLoaded(const QString &folder) const
{
    return loads->contains(folder);
}

bool FolderTreeDriver::isSettledAt(const QString &folder) const
{
    const QStringList names = childrenOf(folder);
    const auto isBefore = [](const QString &one, const QString &other) {
        return one.compare(other, Qt::CaseInsensitive) < 0;
    };
    return isLoaded(folder) && std::is_sorted(names.cbegin(), names.cend(), isBefore);
}

QModelIndex FolderTreeDriver::at(const QString &folder) const
{
    return model()->index(folder);
}

Qt::CheckState FolderTreeDriver::state(const QString &folder) const
{
    return static_cast<Qt::CheckState>(at(folder).data(Qt::CheckStateRole).toInt());
}

QStringList FolderTreeDriver::childrenOf(const QString &folder) const
{
    QStringList names;
    for (int row = 0; row < model()->rowCount(at(folder)); ++row) {
        names.append(model()->index(row, 0, at(folder)).data().toString());
    }
    return names;
}

void FolderTreeDriver::clickBox(const QString &folder)
{
    QStyleOptionViewItem option;
    option.initFrom(view());
    option.widget = view();
    option.rect = visibleRow(folder);
    option.features = QStyleOptionViewItem::HasCheckIndicator;
    click(view()
              ->style()
              ->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, view())
              .center());
}

void FolderTreeDriver::clickName(const QString &folder)
{
    // Behind the check box and the icon.
    click(visibleRow(folder).topLeft() + QPoint(60, visibleRow(folder).height() / 2));
}

void FolderTreeDriver::clickBranch(const QString &folder)
{
    const QRect row = visibleRow(folder);
    click(QPoint(row.left() - view()->indentation() / 2, row.center().y()));
}

void FolderTreeDriver::click(const QPoint &position) const
{
    QTest::mouseClick(view()->viewport(), Qt::LeftButton, Qt::NoModifier, position);
}

QRect FolderTreeDriver::visibleRow(const QString &folder) const
{
    view()->scrollTo(at(folder));
    return view()->visualRect(at(folder));
}
