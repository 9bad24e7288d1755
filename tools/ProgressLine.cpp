// SPDX-License-Identifier: MIT
#include "tools/ProgressLine.h"

#include "engine/ScanProgress.h"
#include "tools/ByteText.h"
#include "tools/ScanOutput.h"

#include <algorithm>
#include <cmath>

#include <sys/ioctl.h>

namespace
{
constexpr int millisecondsBetweenLines = 100;
// Before that an estimate is a guess.
constexpr qint64 minMillisecondsOfEstimate = 1000;
constexpr double minDoneOfEstimate = 0.01;
// What a file costs beside its bytes, as so many bytes that are read.
constexpr double bytesOfAnOpening = 16 * 1024;
constexpr int usualColumns = 80;

QByteArray timeText(qint64 seconds)
{
    const auto two = [](qint64 bigger, const char *big, qint64 smaller, const char *small) {
        return QByteArray::number(bigger)
            .append(big)
            .append(QByteArray::number(smaller))
            .append(small);
    };
    if (seconds < 60) {
        return QByteArray::number(seconds) + " s";
    }
    return seconds < 3600 ? two(seconds / 60, " min ", seconds % 60, " s")
                          : two(seconds / 3600, " h ", seconds / 60 % 60, " min");
}

// Null as long as there is none.
QByteArray estimate(const ScanProgress &progress, qint64 milliseconds)
{
    const auto cost = [](qint64 bytes, qint64 files) {
        return static_cast<double>(bytes) + bytesOfAnOpening * static_cast<double>(files);
    };
    const double all = cost(progress.bytesToCompare, progress.filesToCompare);
    const double done = cost(progress.bytesCompared, progress.filesCompared);
    if (milliseconds < minMillisecondsOfEstimate || done < minDoneOfEstimate * all || done > all) {
        return {};
    }
    const double left = static_cast<double>(milliseconds) * (all - done) / done;
    return ", about " + timeText(static_cast<qint64>(std::ceil(left / 1000))) + " left";
}

int columnsOf(int descriptor)
{
    winsize size = {};
    return ::ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col
                                                                          : usualColumns;
}
} // namespace

ProgressLine::ProgressLine(int terminalDescriptor, QObject *parent)
    : QObject(parent)
    , descriptor(terminalDescriptor)
{
    connect(&timer, &QTimer::timeout, this, &ProgressLine::refresh);
    timer.start(millisecondsBetweenLines);
}

ProgressLine::~ProgressLine()
{
    show(QByteArray());
}

QByteArray ProgressLine::text(const ScanProgress &progress, qint64 milliseconds)
{
    QByteArray text = QByteArray::number(progress.filesFound) + " files found";
    if (progress.filesToCompare > 0) {
        text += ", " + QByteArray::number(progress.filesCompared) + " of "
            + QByteArray::number(progress.filesToCompare) + " compared";
    }
    if (progress.bytesRead > 0) {
        text += ", " + ByteText::of(progress.bytesRead) + " read";
    }
    return progress.filesToCompare > 0 ? text + estimate(progress, milliseconds) : text;
}

void ProgressLine::refresh()
{
    const ScanProgress &progress = *ScanProgress::instance();
    if (progress.filesToCompare > 0 && !sinceComparison.isValid()) {
        sinceComparison.start();
    }
    show(text(progress, sinceComparison.isValid() ? sinceComparison.elapsed() : 0));
}

// Blanks cover what is left of a longer line, on any terminal; a full last column would break it.
void ProgressLine::show(const QByteArray &text)
{
    const QByteArray fitting = text.left(columnsOf(descriptor) - 1);
    if (fitting == shown) {
        return;
    }
    ScanOutput output(descriptor);
    output.write('\r' + fitting.leftJustified(shown.size()));
    output.write(fitting.isEmpty() ? "\r" : "");
    output.flush();
    shown = fitting;
}
