// SPDX-License-Identifier: MIT
#include "tests/fuzz/Fuzz.h"
#include "ui/filetypes/MaskFile.h"

#include <algorithm>

// The bytes are the content of the file.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    const QByteArray content = Fuzz::bytes(data, size);
    const QStringList entries = MaskFile::entries(content);
    const auto lines = content.count('\n') + (content.isEmpty() || content.endsWith('\n') ? 0 : 1);
    Fuzz::require(entries.size() == std::min<qint64>(lines, MaskFile::maxEntries),
                  "an entry a line");
    for (const QString &entry : entries) {
        Fuzz::require(entry.size() <= MaskFile::maxLineBytes, "a bounded entry");
        Fuzz::require(!entry.contains(QChar(0)), "an entry that ends at a zero byte");
        Fuzz::require(entry.indexOf(QLatin1Char('\n')) + 1 == entry.size()
                          || !entry.contains(QLatin1Char('\n')),
                      "a line feed at the end alone");
        Fuzz::require(!entry.endsWith(QStringLiteral("\r\n")), "no pair at the end");
    }
    return 0;
}
