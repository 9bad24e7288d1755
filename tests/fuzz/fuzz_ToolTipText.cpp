// SPDX-License-Identifier: MIT
#include "tests/fuzz/Fuzz.h"
#include "ui/results/ToolTipText.h"

#include <QAbstractTextDocumentLayout>
#include <QGuiApplication>
#include <QTextDocument>
#include <QUrl>

namespace
{
/** Ends the process when anything is looked for. */
class Document final : public QTextDocument
{
protected:
    QVariant loadResource(int, const QUrl &) override
    {
        Fuzz::require(false, "a text that names nothing");
        return {};
    }
};

// What a document makes of the ends of lines and of the characters that it keeps for itself.
QString asShown(QString text)
{
    Document document;
    document.setPlainText(text);
    return document.toPlainText();
}
} // namespace

// The bytes are the path of a file behind its first slash.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static int argc = 1;
    static char program[] = "fuzz";
    static char *argv[] = {program, nullptr};
    // It stays: when statics are destroyed it is too late for the caches of the toolkit's fonts.
    static const auto *const application = new QGuiApplication(argc, argv);
    Q_UNUSED(application)
    // No name holds a zero.
    const QByteArray name = Fuzz::bytes(data, size).replace('\0', '0');
    const QString path = QLatin1Char('/') + QString::fromUtf8(name);
    const QString text = ToolTipText::ofPath(path);
    Document document;
    if (Qt::mightBeRichText(text)) {
        document.setHtml(text);
    } else {
        document.setPlainText(text);
    }
    document.documentLayout()->documentSize();
    Fuzz::require(document.toPlainText() == asShown(path), "a path as it reads");
    return 0;
}
