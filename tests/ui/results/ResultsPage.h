// SPDX-License-Identifier: MIT
#pragma once

#include "app/MainWindow.h"
#include "app/Model.h"
#include "tests/support/ModalDriver.h"
#include "ui/results/DuplicatedFilesListWidget.h"

#include <QList>
#include <QMessageBox>
#include <QString>
#include <QStringList>

class ClickableLabel;
class DuplicatedFilesTableModel;
class QMenu;
class QStackedWidget;
class QTableView;

/**
 * A results page on the screen, with an event hub and a window of its own, and the hands of a user.
 */
class ResultsPage final
{
    Q_DISABLE_COPY(ResultsPage)

public:
    ResultsPage();

    /** The end of a scan that has found these groups, and nothing beside them. */
    void scanned(const QList<QStringList> &groups);
    /** The same of a scan that knows which of the files, as they are now, have one content. */
    void scanned(const QList<QStringList> &groups, const QList<QStringList> &exactGroups);

    QTableView *table() const;
    DuplicatedFilesTableModel *rows() const;
    QStackedWidget *pages() const;
    /** Null if there is none of that caption. */
    ClickableLabel *button(const QString &caption) const;
    QList<ClickableLabel *> buttons() const;

    void press(const QString &caption) const;
    void clickCell(int row, int column, Qt::MouseButton button = Qt::LeftButton) const;
    /** Asks for the context menu at a point of the viewport; null if none opened. */
    QMenu *contextMenu(const QPoint &point = QPoint(5, 5)) const;
    /** Opens the context menu and chooses the entry of that text by the mouse. */
    void choose(const QString &text) const;
    static QStringList texts(const QMenu *menu);
    /** Paths of the ticked rows by their check boxes, from top to bottom. */
    QStringList tickedPaths() const;

    /** Announces a box of the page, with all that a user sees of it. */
    void expectBox(QMessageBox::Icon icon,
                   const QString &title,
                   const QString &text,
                   QMessageBox::StandardButton answer,
                   Qt::TextFormat format = Qt::PlainText,
                   const QString &more = QString(),
                   const QString &details = QString());
    /** The two boxes before files are moved to the trash. */
    void expectDeletion(int count, QMessageBox::StandardButton answer);
    /** With what it says of files that were left, below its text and in its details. */
    void expectComplete(const QString &more = QString(), const QString &details = QString());
    void expectFileSaved();

    MainWindow window;
    Model hub;
    DuplicatedFilesListWidget page;
    ModalDriver boxes;
};
