// SPDX-License-Identifier: MIT
#include "tests/fuzz/Fuzz.h"
#include "ui/results/PictureFile.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryFile>

namespace
{
constexpr int iconHeight = 32;
constexpr int tipSide = 500;
constexpr int maxSide = 32767;

// The readers of the toolkit complain about each broken picture.
void beSilent(QtMsgType, const QMessageLogContext &, const QString &) {}

/** A file that holds one input after the other. In memory where there is such a folder. */
class Input final
{
public:
    Input()
        : file(QDir(QDir(QStringLiteral("/dev/shm")).exists() ? QStringLiteral("/dev/shm")
                                                              : QDir::tempPath())
                   .filePath(QStringLiteral("fuzz-picture-XXXXXX")))
    {
        Fuzz::require(file.open(), "a file for the input");
    }
    QString hold(const QByteArray &content)
    {
        Fuzz::require(file.resize(0) && file.seek(0) && file.write(content) == content.size()
                          && file.flush(),
                      "an input that is written");
        return file.fileName();
    }

private:
    QTemporaryFile file;
};
} // namespace

// The bytes are the content of the file. The decoders themselves belong to the toolkit.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    static int argc = 1;
    static char name[] = "fuzz";
    static char *argv[] = {name, nullptr};
    static const QCoreApplication application(argc, argv);
    qInstallMessageHandler(beSilent);
    static Input input;
    const QString path = input.hold(Fuzz::bytes(data, size));

    PictureFile picture(path);
    const QSize announced = picture.size();
    const QSize icon = PictureFile::sizeAtHeight(announced, iconHeight);
    const QImage iconImage = picture.readAtHeight(iconHeight);
    Fuzz::require(iconImage.isNull() || iconImage.size() == icon, "an icon of the announced size");
    Fuzz::require(iconImage.width() <= maxSide, "an icon that can be painted");
    const QImage whole = PictureFile(path).read();
    Fuzz::require(whole.isNull() || announced.isValid(), "no picture without a size");
    const QSize tip = PictureFile::sizeWithin(announced, tipSide);
    const QImage tipImage = PictureFile(path).readAtSize(tip);
    Fuzz::require(tipImage.isNull() || tipImage.size() == tip, "a tool tip of the announced size");
    Fuzz::require(tip.width() <= tipSide && tip.height() <= tipSide, "a tool tip within its side");
    return 0;
}
