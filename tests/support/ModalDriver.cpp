// SPDX-License-Identifier: MIT
#include "tests/support/ModalDriver.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QFileDialog>
#include <QLineEdit>
#include <QTest>

#include <utility>

namespace
{
constexpr int pollMilliseconds = 10;

QString differs(const char *what, const QString &seen, const QString &wanted)
{
    return QStringLiteral("%1 is \"%2\", not \"%3\"").arg(QLatin1String(what), seen, wanted);
}

QMessageBox::Icon kindOf(const QString &title, QMessageBox::StandardButtons buttons)
{
    if (buttons.testFlag(QMessageBox::Yes)) {
        return QMessageBox::Question;
    }
    return title == QStringLiteral("Warning") ? QMessageBox::Warning : QMessageBox::Information;
}
} // namespace

ModalDriver::ModalDriver(QObject *parent)
    : QObject(parent)
{
    connect(&timer, &QTimer::timeout, this, &ModalDriver::look);
    timer.start(pollMilliseconds);
}

void ModalDriver::expectMessageBox(const QString &title,
                                   const QString &text,
                                   QMessageBox::StandardButtons buttons,
                                   QMessageBox::StandardButton answer)
{
    const auto check = [=](QWidget *widget) -> QString {
        const auto *const box = qobject_cast<QMessageBox *>(widget);
        if (box == nullptr) {
            return differs("the box", QLatin1String(widget->metaObject()->className()), title);
        }
        if (box->windowTitle() != title) {
            return differs("the title", box->windowTitle(), title);
        }
        if (box->text() != text) {
            return differs("the text", box->text(), text);
        }
        if (box->standardButtons() != buttons) {
            return differs("the set of buttons",
                           QString::number(box->standardButtons()),
                           QString::number(buttons));
        }
        if (box->icon() != kindOf(title, buttons)) {
            return differs("the kind",
                           QString::number(box->icon()),
                           QString::number(kindOf(title, buttons)));
        }
        return {};
    };
    const auto act = [this, answer](QWidget *widget) {
        boxParents.append(widget->parentWidget());
        QTest::mouseClick(qobject_cast<QMessageBox *>(widget)->button(answer), Qt::LeftButton);
    };
    expect(title, check, act);
}

void ModalDriver::expectFileDialog(const QString &title, const QString &path)
{
    const auto check = [=](QWidget *widget) -> QString {
        const auto *const dialog = qobject_cast<QFileDialog *>(widget);
        if (dialog == nullptr) {
            return differs("the box", QLatin1String(widget->metaObject()->className()), title);
        }
        return dialog->windowTitle() == title ? QString()
                                              : differs("the title", dialog->windowTitle(), title);
    };
    const auto act = [=](QWidget *widget) {
        if (path.isEmpty()) {
            QTest::keyClick(widget, Qt::Key_Escape);
            return;
        }
        auto *const edit = widget->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
        // Without the focus the dialog would write over what is typed. A server without a window
        // manager gives it to a window that asks, once that one is on the screen.
        const bool isExposed = QTest::qWaitForWindowExposed(widget);
        widget->activateWindow();
        edit->setFocus();
        if (!isExposed || !QTest::qWaitFor([edit] { return edit->hasFocus(); })) {
            QTest::keyClick(widget, Qt::Key_Escape);
            return;
        }
        edit->selectAll();
        QTest::keyClicks(edit, path);
        QTest::keyClick(edit, Qt::Key_Return);
    };
    expect(title, check, act);
}

void ModalDriver::expect(const QString &name,
                         std::function<QString(QWidget *)> check,
                         std::function<void(QWidget *)> act)
{
    steps.append({name, std::move(check), std::move(act)});
}

QStringList ModalDriver::failures() const
{
    QStringList all = problems;
    for (const Step &step : steps) {
        all.append(QStringLiteral("\"%1\" never came").arg(step.name));
    }
    return all;
}

void ModalDriver::look()
{
    QWidget *const widget = QApplication::activeModalWidget();
    if (acting || widget == nullptr || !widget->isVisible()) {
        return;
    }
    // An answer may open the next box before it returns; that one waits for the next look.
    QString problem = QStringLiteral("nobody announced it");
    std::function<void(QWidget *)> act;
    if (!steps.isEmpty()) {
        problem = steps.first().check(widget);
        act = steps.takeFirst().act;
    }
    if (problem.isEmpty()) {
        acting = true;
        act(widget);
        acting = false;
        return;
    }
    problems.append(QStringLiteral("the box \"%1\": %2").arg(widget->windowTitle(), problem));
    if (auto *const dialog = qobject_cast<QDialog *>(widget)) {
        dialog->reject();
    } else {
        widget->close();
    }
}
