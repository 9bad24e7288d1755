// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"
#include "tools/tour/Tour.h"
#include "tools/tour/TourSample.h"
#include "ui/QtCompat.h"

#include <QApplication>
#include <QFileInfo>
#include <QTextStream>

namespace
{
// The tour's own home: the list of file types and the Trash of the person who plays it stay alone.
bool settle(const QDir &output)
{
    const QString home = output.filePath(QStringLiteral("home"));
    const QString data = home + QStringLiteral("/.local/share");
    if (!QDir(home).removeRecursively() || !QDir().mkpath(data)) {
        return false;
    }
    qputenv("HOME", QFile::encodeName(home));
    qputenv("XDG_DATA_HOME", QFile::encodeName(data));
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(home + QStringLiteral("/.config")));
    qputenv("XDG_CACHE_HOME", QFile::encodeName(home + QStringLiteral("/.cache")));
    for (const QString &name : output.entryList({QStringLiteral("*.png")}, QDir::Files)) {
        QFile::remove(output.filePath(name));
    }
    // The list of file types is saved into the working folder.
    return QDir::setCurrent(home);
}

int fail(const QString &line)
{
    QTextStream(stderr) << line << '\n';
    return 2;
}
} // namespace

// twinsift-tour OUTPUT [FOLDER]
int main(int argc, char **argv)
{
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QtCompat::useWholeRatios();
    const QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 2 || arguments.size() > 3) {
        return fail(QStringLiteral("twinsift-tour OUTPUT [FOLDER]"));
    }
    const QDir output(QDir(arguments.at(1)).absolutePath());
    const bool ownSample = arguments.size() == 2;
    QString folder = output.filePath(QStringLiteral("sample"));
    if (!ownSample) {
        folder = QDir(arguments.at(2)).absolutePath();
        if (!QFileInfo(folder).isDir()) {
            return fail(QStringLiteral("%1 is not a folder").arg(folder));
        }
    }
    if (!QDir().mkpath(output.path()) || !settle(output)) {
        return fail(QStringLiteral("Cannot write to %1").arg(output.path()));
    }
    if (ownSample) {
        QDir(folder).removeRecursively();
        const TourSample sample(folder);
        if (!sample.isComplete()) {
            return fail(QStringLiteral("Cannot write the sample to %1").arg(folder));
        }
        QTextStream(stdout) << QStringLiteral("a sample of %1 files\n").arg(sample.filesCount());
    }
    MainWindow window;
    return Tour(&window, folder, output.path(), ownSample).play() ? 0 : 1;
}
