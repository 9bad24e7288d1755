// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>
#include <QList>
#include <QObject>
#include <QRegularExpression>
#include <QString>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

/**
 * Base of every test. Each test function gets a HOME, XDG folders and a working folder of its own,
 * which are gone when it ends, and fails on a log line (warning, critical, or any debug line of the
 * program) that it has not announced, or that it has announced and that never came.
 */
class TestCase : public QObject
{
    Q_OBJECT

public:
    TestCase();
    ~TestCase() override;

    /** The log line must come once before the test function ends. */
    void expectMessage(QtMsgType type, const QString &text);
    void expectMessage(QtMsgType type, const QRegularExpression &pattern);
    /** Lines that match may come, in any number. */
    void allowMessages(const QRegularExpression &pattern);

    /** Absolute path of a name below the working folder of the test function. */
    QString path(const QString &name) const;
    QString home() const;
    /** Where the trash of the home folder is, or would be. */
    QString homeTrash() const;

protected slots:
    /** Overrides call these first (init) or last (cleanup). */
    virtual void init();
    virtual void cleanup();

private:
    struct Expected {
        QtMsgType type;
        QRegularExpression pattern;
    };

    static void handleMessage(QtMsgType type,
                              const QMessageLogContext &context,
                              const QString &text);
    bool takeMessage(QtMsgType type, const QString &text);

    std::unique_ptr<QTemporaryDir> folder;
    QList<Expected> expected;
    QList<QRegularExpression> allowed;
    QStringList unexpected;
};

/** Runs the test functions of Class in an application, with the surroundings of TestCase. */
#define TWINSIFT_TEST_MAIN(Class) \
    int main(int argc, char **argv) \
    { \
        return TestSurroundings::run<Class>(argc, argv); \
    }

namespace TestSurroundings
{
void prepare();

template<typename Class>
int run(int argc, char **argv)
{
    prepare();
    QApplication application(argc, argv);
    Class test;
    return QTest::qExec(&test, argc, argv);
}
} // namespace TestSurroundings
