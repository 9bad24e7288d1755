// SPDX-License-Identifier: MIT
#include "tests/ui/results/ResultsPage.h"

#include "app/ModelEvent.h"
#include "engine/FileTime_posix.h"
#include "engine/ScanFindings.h"
#include "ui/progress/ClickableLabel.h"
#include "ui/results/DuplicatedFilesTableModel.h"

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QFile>
#include <QMenu>
#include <QPushButton>
#include <QStackedWidget>
#include <QTableView>
#include <QTest>

namespace
{
QMessageBox::StandardButtons buttonsFor(QMessageBox::Icon icon)
{
    QMessageBox::StandardButtons buttons = QMessageBox::Ok;
    if (icon == QMessageBox::Question) {
        buttons = QMessageBox::Yes | QMessageBox::No;
    }
    return buttons;
}

QString wrongWith(const QMessageBox *box,
                  QMessageBox::Icon icon,
                  const QString &title,
                  const QString &text,
                  Qt::TextFormat format,
                  const QString &more,
                  const QString &details)
{
    if (box == nullptr) {
        return QStringLiteral("it is no message box");
    }
    if (box->windowTitle() != title || box->text() != text) {
        return QStringLiteral("it says \"%1\"").arg(box->text());
    }
    if (box->informativeText() != more || box->detailedText() != details) {
        return QStringLiteral("it adds \"%1\" and \"%2\"")
            .arg(box->informativeText(), box->detailedText());
    }
    if (box->icon() != icon || box->textFormat() != format) {
        return QStringLiteral("its icon is %1, its format %2")
            .arg(box->icon())
            .arg(box->textFormat());
    }
    const auto harmless = icon == QMessageBox::Question ? QMessageBox::No : QMessageBox::Ok;
    if (box->standardButtons() != buttonsFor(icon)
        || box->defaultButton() != box->button(harmless)) {
        return QStringLiteral("its buttons are %1").arg(box->standardButtons());
    }
    return {};
}
} // namespace

ResultsPage::ResultsPage()
    : hub(nullptr)
    , page(&hub, &window)
{
    window.resize(1000, 700);
    window.show();
    page.setGeometry(0, 0, 900, 600);
    page.raise();
    page.show();
}

void ResultsPage::scanned(const QList<QStringList> &groups)
{
    *ScanFindings::instance() = {};
    hub.emitModelEvent(FindDuplicatedFilesFinishedEvent(groups));
}

void ResultsPage::scanned(const QList<QStringList> &groups, const QList<QStringList> &exactGroups)
{
    ScanFindings &findings = *ScanFindings::instance();
    findings = {};
    findings.groups = groups;
    for (const QStringList &paths : exactGroups) {
        QVector<ScannedFile> files;
        for (const QString &path : paths) {
            struct stat status = {};
            ::stat(QFile::encodeName(path).constData(), &status);
            files.append(
                {path, status.st_size, FileTime::modified(status), FileTime::changed(status)});
        }
        findings.exactGroups.append(files);
    }
    hub.emitModelEvent(FindDuplicatedFilesFinishedEvent(groups));
}

QTableView *ResultsPage::table() const
{
    return page.findChild<QTableView *>();
}

DuplicatedFilesTableModel *ResultsPage::rows() const
{
    return qobject_cast<DuplicatedFilesTableModel *>(table()->model());
}

QStackedWidget *ResultsPage::pages() const
{
    return window.findChild<QStackedWidget *>();
}

ClickableLabel *ResultsPage::button(const QString &caption) const
{
    for (ClickableLabel *const label : buttons()) {
        if (label->accessibleName() == caption) {
            return label;
        }
    }
    return nullptr;
}

QList<ClickableLabel *> ResultsPage::buttons() const
{
    return page.findChildren<ClickableLabel *>();
}

void ResultsPage::press(const QString &caption) const
{
    QTest::mouseClick(button(caption), Qt::LeftButton);
}

void ResultsPage::clickCell(int row, int column, Qt::MouseButton mouseButton) const
{
    const QModelIndex cell = rows()->index(row, column);
    QTest::mouseClick(table()->viewport(),
                      mouseButton,
                      Qt::NoModifier,
                      table()->visualRect(cell).center());
}

QMenu *ResultsPage::contextMenu(const QPoint &point) const
{
    QWidget *const viewport = table()->viewport();
    QContextMenuEvent event(QContextMenuEvent::Mouse, point, viewport->mapToGlobal(point));
    QApplication::sendEvent(viewport, &event);
    return qobject_cast<QMenu *>(QApplication::activePopupWidget());
}

void ResultsPage::choose(const QString &text) const
{
    QMenu *const menu = contextMenu();
    QVERIFY(menu != nullptr);
    for (QAction *const action : menu->actions()) {
        if (action->text() == text) {
            const QPoint place = menu->actionGeometry(action).center();
            QTest::mouseMove(menu, place);
            QTest::mouseClick(menu, Qt::LeftButton, Qt::NoModifier, place);
            return;
        }
    }
    menu->close();
    QFAIL("the menu has no such entry");
}

QStringList ResultsPage::texts(const QMenu *menu)
{
    QStringList all;
    for (const QAction *const action : menu->actions()) {
        all.append(action->isSeparator() ? QStringLiteral("-") : action->text());
    }
    return all;
}

QStringList ResultsPage::tickedPaths() const
{
    QStringList paths;
    for (int row = 0; row < rows()->rowCount(); ++row) {
        if (rows()->index(row, 0).data(Qt::CheckStateRole).toInt() == Qt::Checked) {
            paths.append(rows()->index(row, 2).data().toString());
        }
    }
    return paths;
}

void ResultsPage::expectBox(QMessageBox::Icon icon,
                            const QString &title,
                            const QString &text,
                            QMessageBox::StandardButton answer,
                            Qt::TextFormat format,
                            const QString &more,
                            const QString &details)
{
    boxes.expect(
        title,
        [=](QWidget *widget) {
            return wrongWith(qobject_cast<QMessageBox *>(widget),
                             icon,
                             title,
                             text,
                             format,
                             more,
                             details);
        },
        [=](QWidget *widget) {
            QTest::mouseClick(qobject_cast<QMessageBox *>(widget)->button(answer), Qt::LeftButton);
        });
}

void ResultsPage::expectDeletion(int count, QMessageBox::StandardButton answer)
{
    expectBox(
        QMessageBox::Warning,
        QStringLiteral("Warning"),
        QStringLiteral("<b>Warning!<br><br>Deleting files may cause some applications to "
                       "crash.<br></b><br>Before deleting, we recommend to you check the list "
                       "of files to be deleted."),
        QMessageBox::Ok,
        Qt::RichText);
    expectBox(QMessageBox::Question,
              QStringLiteral("Delete Duplicate Files"),
              QStringLiteral("Start moving %1 duplicate files to trash. Are you sure?").arg(count),
              answer);
}

void ResultsPage::expectComplete(const QString &more, const QString &details)
{
    expectBox(QMessageBox::Information,
              QStringLiteral("Complete!"),
              QStringLiteral("Duplicated files was deleted!"),
              QMessageBox::Ok,
              Qt::PlainText,
              more,
              details);
}

void ResultsPage::expectFileSaved()
{
    expectBox(QMessageBox::Information,
              QStringLiteral("File saved"),
              QStringLiteral("File saving complete!"),
              QMessageBox::Ok);
}
