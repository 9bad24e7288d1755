// SPDX-License-Identifier: MIT
#include "tests/fuzz/Fuzz.h"
#include "ui/filetypes/MaskEntry.h"

// Each line is an entry, a line of entries, and both fields of the editor.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    const QStringList texts = QString::fromUtf8(Fuzz::bytes(data, size)).split(QLatin1Char('\n'));
    QStringList entries;
    for (const QString &text : texts) {
        const QStringList pieces = MaskEntry::pieces(text);
        Fuzz::require(!pieces.isEmpty(), "at least one piece");
        Fuzz::require(pieces.join(QLatin1Char('|')) == text, "pieces that make up the entry");
        const QStringList masks = MaskEntry::masks(text);
        Fuzz::require(masks.isEmpty() == (pieces.size() != 2), "masks with one bar alone");
        Fuzz::require(masks.isEmpty() || masks.join(QLatin1Char(';')) == pieces.last(),
                      "masks that make up the piece");
        const QString made = MaskEntry::fromNameAndMasks(text, texts.first());
        Fuzz::require(text.contains(QLatin1Char('%'))
                          || made == text + QLatin1Char('|') + texts.first(),
                      "a plain name as it is");
        Fuzz::require(MaskEntry::fromLine(text).join(QStringLiteral(", ")) == text,
                      "entries that make up the line");
        MaskEntry::masksOfLine(text);
        if (!text.isEmpty() && !text.contains(QStringLiteral(", "))
            && !text.endsWith(QLatin1Char(',')) && !text.startsWith(QLatin1Char(' '))) {
            entries.append(text);
        }
    }
    Fuzz::require(entries.isEmpty() || MaskEntry::fromLine(MaskEntry::toLine(entries)) == entries,
                  "entries that outlive the line");
    return 0;
}
