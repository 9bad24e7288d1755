// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

class FileSystemTreeModel;
class FolderLoads;
class QModelIndex;
class QPushButton;
class QTreeView;
class QWidget;

/** Drives the folder tree somewhere below a shown widget, by mouse alone. */
class FolderTreeDriver final : public QObject
{
    Q_OBJECT

public:
    static constexpr int loadMilliseconds = 30000;

    explicit FolderTreeDriver(QWidget *ancestor);

    QTreeView *view() const;
    FileSystemTreeModel *model() const;
    QPushButton *button() const;
    QWidget *warning() const;

    /** Presses the button and answers its dialog; returns what went wrong. */
    QStringList choose(const QString &folder);
    bool isLoaded(const QString &folder) const;
    /** True when the folder is loaded and its rows are sorted: they stay where they are. */
    bool isSettledAt(const QString &folder) const;

    QModelIndex at(const QString &folder) const;
    Qt::CheckState state(const QString &folder) const;
    QStringList childrenOf(const QString &folder) const;

    void clickBox(const QString &folder);
    void clickName(const QString &folder);
    /** On the mark that expands and collapses. */
    void clickBranch(const QString &folder);

private:
    void click(const QPoint &position) const;
    QRect visibleRow(const QString &folder) const;

    QWidget *const above;
    FolderLoads *loads = nullptr;
};
