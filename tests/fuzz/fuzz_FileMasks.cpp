// SPDX-License-Identifier: MIT
#include "engine/FileMasks.h"
#include "tests/fuzz/Fuzz.h"

// The first line holds the masks, separated as users write them, and each further one a file name.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    const QStringList lines = QString::fromUtf8(Fuzz::bytes(data, size)).split(QLatin1Char('\n'));
    const QStringList texts = lines.first().split(QLatin1Char(';'));
    const FileMasks masks(texts);
    for (int i = 1; i < lines.size(); ++i) {
        // What file systems allow.
        const QString name = lines.at(i).left(255);
        const bool isTaken = masks.match(name);
        Fuzz::require(masks.match(name) == isTaken, "the same answer twice");
        if (texts.contains(QStringLiteral("*.*"))) {
            Fuzz::require(isTaken, "every file");
        }
        if (isTaken) {
            Fuzz::require(FileMasks(texts + QStringList{QStringLiteral("none")}).match(name),
                          "no file lost by one mask more");
        }
    }
    return 0;
}
