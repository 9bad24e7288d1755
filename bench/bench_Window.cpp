// SPDX-License-Identifier: MIT
#include "app/MainWindow.h"
#include "bench/LoopPassTimer.h"
#include "engine/Configuration.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QTextStream>
#include <QTimer>

#include <ctime>

namespace
{
constexpr int settleMilliseconds = 200;
constexpr int giveUpMilliseconds = 120 * 1000;

/** Tells whether its widget has been painted. */
class PaintWatch final : public QObject
{
public:
    using QObject::QObject;

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        hasPainted = hasPainted || event->type() == QEvent::Paint;
        return QObject::eventFilter(watched, event);
    }

    bool hasPainted = false;
};

int fail(const QString &line)
{
    QTextStream(stderr) << line << '\n';
    return 2;
}

// Of the clock that whoever started the process can read as well.
double monotonicSeconds()
{
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

// The end of the pass in which the window has first been painted.
int measureFirstPaint(LoopPassTimer *application)
{
    MainWindow window;
    PaintWatch watch;
    window.installEventFilter(&watch);
    application->onPassEnd = [&] {
        if (watch.hasPainted) {
            application->onPassEnd = nullptr;
            QTextStream(stdout) << "painted-at " << QString::number(monotonicSeconds(), 'f', 6)
                                << '\n';
            QApplication::quit();
        }
    };
    QTimer::singleShot(giveUpMilliseconds, application, [] { QApplication::exit(1); });
    window.show();
    return QApplication::exec();
}

void chooseProfile(const QString &checksum)
{
    ScanProfile &profile = Configuration::instance()->scanProfile;
    profile.matchByteByByte = false;
    profile.advancedMatch = true;
    profile.md5Hash = checksum == QLatin1String("md5");
    profile.sha1Hash = checksum == QLatin1String("sha1");
    profile.crcHash = checksum == QLatin1String("crc");
}

// From the call that starts a scan until the page says that it is completed.
int measureScan(LoopPassTimer *application, const QString &checksum, const QStringList &folders)
{
    MainWindow window;
    window.show();
    const auto *const title = window.findChild<QLabel *>(QStringLiteral("titleLabel"));
    if (title == nullptr) {
        return fail(QStringLiteral("The window has no titleLabel"));
    }
    chooseProfile(checksum);
    Configuration::instance()->folders = folders;
    QElapsedTimer scan;
    qint64 nanoseconds = -1;
    application->onPassEnd = [&] {
        if (nanoseconds < 0 && scan.isValid()
            && title->text().contains(QLatin1String("completed"))) {
            nanoseconds = scan.nsecsElapsed();
            // What the end of the scan leaves to be painted belongs to it.
            QTimer::singleShot(settleMilliseconds, application, SLOT(quit()));
        }
    };
    QTimer::singleShot(settleMilliseconds, application, [&] {
        application->reset();
        scan.start();
        window.onScanStart();
    });
    QTimer::singleShot(giveUpMilliseconds, application, [] { QApplication::exit(1); });
    const int status = QApplication::exec();
    application->onPassEnd = nullptr;
    QTextStream(stdout) << "seconds " << static_cast<double>(nanoseconds) / 1e9
                        << "\nlongest-pass-milliseconds "
                        << static_cast<double>(application->longestNanoseconds()) / 1e6 << '\n';
    return status;
}
} // namespace

// bench_Window --first-paint prints when, bench_Window md5|sha1|crc FOLDER... how long a scan took.
int main(int argc, char **argv)
{
    LoopPassTimer application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.value(1) == QLatin1String("--first-paint")) {
        return measureFirstPaint(&application);
    }
    if (arguments.size() < 3) {
        return fail(QStringLiteral("bench_Window --first-paint | md5|sha1|crc FOLDER..."));
    }
    return measureScan(&application, arguments.at(1), arguments.mid(2));
}
