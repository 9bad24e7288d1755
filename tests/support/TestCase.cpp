// SPDX-License-Identifier: MIT
#include "tests/support/TestCase.h"

#include "ui/QtCompat.h"

#include <QDir>
#include <QMutex>
#include <QSettings>

#include <utility>

namespace
{
// The handler may be called on the engine's thread.
QMutex mutex;
TestCase *current = nullptr;
QtMessageHandler previous = nullptr;

// What the toolkit itself says without a screen, or where the machine lacks a service.
bool isToolkitNoise(const QString &text)
{
    static const QRegularExpression noise(QStringLiteral(
        "^This plugin does not support|^qt\\.qpa\\.|^QStandardPaths: (XDG_RUNTIME_DIR|runtime)|"
        "^QFontDatabase: |^libpng warning|^QXcbConnection: |^Could not connect to any X display"));
    return noise.match(text).hasMatch();
}
} // namespace

TestCase::TestCase() = default;
TestCase::~TestCase() = default;

void TestSurroundings::prepare()
{
    // Dialogs of the toolkit, which a test can drive, instead of a desktop's own.
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QtCompat::useWholeRatios();
}

void TestCase::init()
{
    folder = std::make_unique<QTemporaryDir>();
    QVERIFY(folder->isValid());
    const QDir root(folder->path());
    const QList<QPair<const char *, QString>> places = {
        {"HOME", QStringLiteral("home")},
        {"XDG_DATA_HOME", QStringLiteral("home/.local/share")},
        {"XDG_CONFIG_HOME", QStringLiteral("home/.config")},
        {"XDG_CACHE_HOME", QStringLiteral("home/.cache")},
        {"XDG_RUNTIME_DIR", QStringLiteral("runtime")},
    };
    for (const auto &place : places) {
        QVERIFY(root.mkpath(place.second));
        qputenv(place.first, QFile::encodeName(root.filePath(place.second)));
    }
    QVERIFY(QFile::setPermissions(root.filePath(QStringLiteral("runtime")),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    // The toolkit fixes this place at its first use, and its file dialog writes there.
    QSettings::setPath(QSettings::NativeFormat,
                       QSettings::UserScope,
                       root.filePath(QStringLiteral("home/.config")));
    QVERIFY(root.mkpath(QStringLiteral("work")));
    QVERIFY(QDir::setCurrent(root.filePath(QStringLiteral("work"))));
    expected.clear();
    allowed.clear();
    unexpected.clear();
    const QMutexLocker lock(&mutex);
    current = this;
    previous = qInstallMessageHandler(handleMessage);
}

void TestCase::cleanup()
{
    {
        const QMutexLocker lock(&mutex);
        qInstallMessageHandler(previous);
        current = nullptr;
    }
    QDir::setCurrent(QDir::rootPath());
    folder.reset();
    QStringList missing;
    for (const Expected &line : std::as_const(expected)) {
        missing.append(line.pattern.pattern());
    }
    QVERIFY2(unexpected.isEmpty(), qPrintable(unexpected.join(QLatin1Char('\n'))));
    QVERIFY2(missing.isEmpty(), qPrintable(missing.join(QLatin1Char('\n'))));
}

void TestCase::expectMessage(QtMsgType type, const QString &text)
{
    expectMessage(
        type,
        QRegularExpression(QRegularExpression::anchoredPattern(QRegularExpression::escape(text))));
}

void TestCase::expectMessage(QtMsgType type, const QRegularExpression &pattern)
{
    const QMutexLocker lock(&mutex);
    expected.append({type, pattern});
}

void TestCase::allowMessages(const QRegularExpression &pattern)
{
    const QMutexLocker lock(&mutex);
    allowed.append(pattern);
}

QString TestCase::path(const QString &name) const
{
    return QDir(folder->path() + QStringLiteral("/work")).filePath(name);
}

QString TestCase::home() const
{
    return folder->path() + QStringLiteral("/home");
}

QString TestCase::homeTrash() const
{
    return home() + QStringLiteral("/.local/share/Trash");
}

void TestCase::handleMessage(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    QtMessageHandler next = nullptr;
    {
        const QMutexLocker lock(&mutex);
        next = previous;
        if (current != nullptr && current->takeMessage(type, text)) {
            return;
        }
    }
    if (next != nullptr) {
        next(type, context, text);
    }
}

bool TestCase::takeMessage(QtMsgType type, const QString &text)
{
    for (int i = 0; i < expected.size(); ++i) {
        if (expected.at(i).type == type && expected.at(i).pattern.match(text).hasMatch()) {
            expected.removeAt(i);
            return true;
        }
    }
    for (const QRegularExpression &pattern : std::as_const(allowed)) {
        if (pattern.match(text).hasMatch()) {
            return true;
        }
    }
    if (!isToolkitNoise(text)) {
        unexpected.append(text);
    }
    return false;
}
