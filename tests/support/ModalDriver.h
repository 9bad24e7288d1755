// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QMessageBox>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>

#include <functional>

class QWidget;

/**
 * Answers the modal boxes that a test has announced, in that order, by mouse and keys.
 *
 * A box that differs from the announced one, or that nobody has announced, is refused (its default
 * of doing nothing is taken) and stands in failures(). A test ends with QCOMPARE(driver.failures(),
 * QStringList()), which also names announced boxes that never came.
 */
class ModalDriver final : public QObject
{
    Q_OBJECT

public:
    explicit ModalDriver(QObject *parent = nullptr);

    /**
     * Its kind goes with it: a question has a Yes, a warning its title, all others inform.
     */
    void expectMessageBox(const QString &title,
                          const QString &text,
                          QMessageBox::StandardButtons buttons,
                          QMessageBox::StandardButton answer);
    /** A file dialog in which this path is typed and accepted; an empty path cancels it. */
    void expectFileDialog(const QString &title, const QString &path);
    /** Any other modal widget: check returns what is wrong with it, act must make it close. */
    void expect(const QString &name,
                std::function<QString(QWidget *)> check,
                std::function<void(QWidget *)> act);

    /** What went wrong so far, and the announced boxes that have not come. */
    QStringList failures() const;
    bool isDone() const { return steps.isEmpty(); }
    /** Those of the message boxes that have come as announced, in their order; null for none. */
    QList<QWidget *> parents() const { return boxParents; }

private:
    struct Step {
        QString name;
        std::function<QString(QWidget *)> check;
        std::function<void(QWidget *)> act;
    };

    void look();

    QTimer timer;
    QList<Step> steps;
    QStringList problems;
    QList<QWidget *> boxParents;
    bool acting = false;
};
