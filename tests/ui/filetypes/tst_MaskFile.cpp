// SPDX-License-Identifier: MIT
#include "tests/support/RestrictedRights.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "tests/support/Toolkit.h"
#include "ui/filetypes/MaskFile.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>

#include <sys/stat.h>

namespace
{
QString fileName()
{
    return QStringLiteral("ftie.dat");
}

// clang-format off
const char *const defaultLines[] = {
    "Any File|*.*\n",
    "Adobe Acrobat Files|*.PDFArchive Files|*.7Z;*.ACE;*.ALZ;*.ARC;*.ARJ;*.BZ2;*.BZ2;*.CAB;*.JAR;*.LZH;*.PAK;*.RAR;*.AT3;*.TGZ;*.TAR;*.GZ;*.UHA;*.ZIP\n",
    "MS Office Files|*.MDB;*.ADP;*.MDA;*.MDE;*.ADE;*.XL;*.XLA;*.XLS*;*.XLT;*.XLM;*.XLC;*.XLW;*.PPS;*.PPT*;*.DOC*;*.WRI;*.CSV\n",
    "Music Files|*.M4A;*.M4P;*.MP2;*.AAC;*.AIFF;*.APE;*.AU;*.FLAC;*.MID;*.MP3;*.OGG;*.WAV;*.WMA;*.MP3PRO;*.RM;*.RA\n",
    "Open Office Files|*.ODT;*.ODS;*.ODG;*.ODP;*.ODM;*.ODF\n",
    "Photo Images|*.BMP;*.GIF;*.ICO;*.JNG;*.JPG;*.JPEG;*.JPE;*.JP2;*.JPC;*.J2K;*.PNG;*.TIF;*.TIFF;*.EPS;*.CLP;*.CRW;*.CR2;*.DCX;*.EXR;*.KDC;*.PCX;*.PSD;*.RAW;*.SFW;*.WMF\n",
    "Text Files|*.TXT;*.RTF\n",
    "Video Files|*.3GP;*.MP4;*.SWF;*.FLA;*.FLV;*.MKV;*.MPEG;*.MPG;*.M1V;*.MP2;*.MPA;*.MPE;*.MOV;*.AVI;*.WMV;*.DIVX\n",
    "Web Files|*.ASP;*.CSS;*.HTML;*.HTM;*.PHP;*.XHTML;*.JS\n",
};
// clang-format on
} // namespace

class tst_MaskFile final : public TestCase
{
    Q_OBJECT

private slots:
    void readingPathLiesInTheDataFolderAndMakesIt();
    void defaultContentHasNineLines();
    void defaultThatCannotBeWrittenIsReported();
    void entries_data();
    void entries();
    void boundsOfReading_data();
    void boundsOfReading();
    void hugeFileIsReadWithinBounds_data();
    void hugeFileIsReadWithinBounds();
    void endlessLineIsReadWithinBounds();
    void whatIsNoRegularFileCannotBeOpened_data();
    void whatIsNoRegularFileCannotBeOpened();
    void unreadableFileCannotBeOpened();
    void saveWritesTheWorkingFolder();
    void readsUtf8AndSavesInTheLocalEncoding();
    void saveRefusesWhatIsNoRegularFile_data();
    void saveRefusesWhatIsNoRegularFile();
    void saveReplacesListsOfTypesOnly_data();
    void saveReplacesListsOfTypesOnly();
    void saveReplacesTheFileThatIsRead();
    void saveReplacesOnlyWhatIsReadWhole_data();
    void saveReplacesOnlyWhatIsReadWhole();
    void saveLeavesLinksAlone_data();
    void saveLeavesLinksAlone();
    void savedListIsNotWrittenAgain();
};

void tst_MaskFile::readingPathLiesInTheDataFolderAndMakesIt()
{
    // The file is read from the data folder of the program, which is made with its parents.
    QVERIFY(QDir(home() + QStringLiteral("/.local")).removeRecursively());
    const QString dataFolder = home() + QStringLiteral("/.local/share/tst_MaskFile");
    QCOMPARE(MaskFile::readingPath(), dataFolder + QStringLiteral("/ftie.dat"));
    QVERIFY(QFileInfo(dataFolder).isDir());
    QVERIFY(!QFileInfo::exists(MaskFile::readingPath()));
}

void tst_MaskFile::defaultContentHasNineLines()
{
    // The default file holds the nine known lines and nothing else, 794 characters in all.
    MaskFile::createDefault(path(fileName()));
    const QByteArray content = TempTree::read(path(fileName()));
    QByteArray wanted;
    QStringList lines;
    for (const char *const line : defaultLines) {
        wanted.append(line);
        lines.append(QString::fromLatin1(line));
    }
    QCOMPARE(content, wanted);
    QCOMPARE(content.size(), 794);
    QVERIFY(MaskFile::read(path(fileName())) == lines);
}

void tst_MaskFile::defaultThatCannotBeWrittenIsReported()
{
    // A default file that cannot be made leaves the error's text in the debug log.
    const QString place = path(QStringLiteral("missing/ftie.dat"));
    expectMessage(QtDebugMsg, QStringLiteral("\"No such file or directory\""));
    MaskFile::createDefault(place);
    QVERIFY(!QFileInfo::exists(place));
}

void tst_MaskFile::entries_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("entries");
    const QString a = QStringLiteral("A|*.x");
    const QString b = QStringLiteral("B|*.y");
    const QString lineFeed = QStringLiteral("\n");
    QTest::newRow("empty") << QByteArray() << QStringList();
    QTest::newRow("line feeds") << QByteArray("A|*.x\nB|*.y\n")
                                << QStringList{a + lineFeed, b + lineFeed};
    QTest::newRow("no line feed at the end")
        << QByteArray("A|*.x\nB|*.y") << QStringList{a + lineFeed, b};
    QTest::newRow("pairs") << QByteArray("A|*.x\r\nB|*.y\r\n") << QStringList{a, b};
    QTest::newRow("line feed, then pair")
        << QByteArray("A|*.x\n\r\nB|*.y\n\r\n")
        << QStringList{a + lineFeed, QString(), b + lineFeed, QString()};
    QTest::newRow("empty lines") << QByteArray("\nA|*.x\n\n")
                                 << QStringList{lineFeed, a + lineFeed, lineFeed};
    QTest::newRow("carriage returns alone")
        << QByteArray("A\rB\r\r\n") << QStringList{QStringLiteral("A\rB\r")};
    QTest::newRow("zero byte") << QByteArray("A|*.x\0;*.z\nB|*.y\n", 17)
                               << QStringList{a, b + lineFeed};
    QTest::newRow("line of zero bytes") << QByteArray(5, '\0') << QStringList{QString()};
    QTest::newRow("UTF-8") << QByteArray("\xc3\xa4|*.x\n")
                           << QStringList{QStringLiteral("ä|*.x\n")};
    QTest::newRow("no UTF-8") << QByteArray("a\xff|*.x\n")
                              << QStringList{QStringLiteral("a\uFFFD|*.x\n")};
}

void tst_MaskFile::entries()
{
    // A line keeps its bare line feed, loses its pairs and ends at its first zero byte.
    QFETCH(const QByteArray, content);
    QFETCH(const QStringList, entries);
    QCOMPARE(MaskFile::entries(content), entries);
    TempTree(path(QString())).file(fileName(), content);
    QVERIFY(MaskFile::read(path(fileName())) == entries);
}

void tst_MaskFile::boundsOfReading_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("lengthOfFirst");
    QTest::newRow("10,000 entries") << QByteArray("A|*.x\n").repeated(10000) << 10000 << 6;
    QTest::newRow("as many entries as there may be")
        << QByteArray("\n").repeated(MaskFile::maxEntries) << MaskFile::maxEntries << 1;
    QTest::newRow("too many entries")
        << QByteArray("\n").repeated(MaskFile::maxEntries + 1) << MaskFile::maxEntries << 1;
    QTest::newRow("as long a line as there may be") << QByteArray(MaskFile::maxLineBytes - 1, 'x')
            + "\n" << 1 << MaskFile::maxLineBytes;
    QTest::newRow("too long a line, then another") << QByteArray(3 * MaskFile::maxLineBytes, 'x')
            + "\ny\n" << 2 << MaskFile::maxLineBytes;
}

void tst_MaskFile::boundsOfReading()
{
    // What lies beyond the bounds is left out, what lies within them is whole.
    QFETCH(const QByteArray, content);
    QFETCH(const int, count);
    QFETCH(const int, lengthOfFirst);
    const QStringList entries = MaskFile::entries(content);
    QCOMPARE(entries.size(), count);
    QCOMPARE(entries.first().size(), lengthOfFirst);
    QCOMPARE(entries.last().endsWith(QLatin1Char('\n')), true);
}

void tst_MaskFile::hugeFileIsReadWithinBounds_data()
{
    QTest::addColumn<QByteArray>("start");
    QTest::addColumn<QString>("firstEntry");
    QTest::newRow("zero bytes only") << QByteArray() << QString();
    QTest::newRow("a line, then zero bytes") << QByteArray("A|*.x\n") << QStringLiteral("A|*.x\n");
}

void tst_MaskFile::hugeFileIsReadWithinBounds()
{
    // Of a file of a gigabyte only the first megabytes are looked at.
    QFETCH(const QByteArray, start);
    QFETCH(const QString, firstEntry);
    const TempTree tree(path(QString()));
    tree.file(fileName(), start);
    QVERIFY(QFile::resize(path(fileName()), qint64(1) << 30));
    QElapsedTimer timer;
    timer.start();
    const auto entries = MaskFile::read(path(fileName()));
    QVERIFY(timer.elapsed() < 1000);
    QCOMPARE(entries.value().first(), firstEntry);
    QVERIFY(entries->size() <= 2);
}

void tst_MaskFile::endlessLineIsReadWithinBounds()
{
    // A file of 100 MB that is one line without an end gives one entry, as long as a line may be.
    QFile file(path(fileName()));
    QVERIFY(file.open(QIODevice::WriteOnly));
    const QByteArray block(1 << 20, 'x');
    for (int i = 0; i < 100; ++i) {
        QCOMPARE(file.write(block), block.size());
    }
    file.close();
    const auto entries = MaskFile::read(path(fileName()));
    QCOMPARE(entries->size(), 1);
    QCOMPARE(entries->first(), QString(MaskFile::maxLineBytes, QLatin1Char('x')));
}

void tst_MaskFile::whatIsNoRegularFileCannotBeOpened_data()
{
    QTest::addColumn<QString>("kind");
    for (const char *const kind : {"missing", "folder", "FIFO", "device", "link to a FIFO"}) {
        QTest::newRow(kind) << QString::fromLatin1(kind);
    }
}

void tst_MaskFile::whatIsNoRegularFileCannotBeOpened()
{
    // Whatever stands in the file's place, reading it returns at once and gives nothing.
    QFETCH(const QString, kind);
    const TempTree tree(path(QString()));
    if (kind == QStringLiteral("folder")) {
        tree.folder(fileName());
    } else if (kind == QStringLiteral("FIFO")) {
        tree.fifo(fileName());
    } else if (kind == QStringLiteral("device")) {
        tree.link(fileName(), QStringLiteral("/dev/zero"));
    } else if (kind == QStringLiteral("link to a FIFO")) {
        tree.link(fileName(), tree.fifo(QStringLiteral("pipe")));
    }
    QVERIFY(!MaskFile::read(path(fileName())).has_value());
}

void tst_MaskFile::unreadableFileCannotBeOpened()
{
    // A file without the right to read it gives nothing.
    const RestrictedRights rights;
    if (!rights.areRestricted()) {
        QSKIP("the super-user reads every file here");
    }
    const TempTree tree(path(QString()));
    tree.file(fileName(), "A|*.x\n");
    tree.setMode(fileName(), 0);
    QVERIFY(!MaskFile::read(path(fileName())).has_value());
}

void tst_MaskFile::saveWritesTheWorkingFolder()
{
    // Each entry is logged and saved in the working folder with a pair at its end, just one.
    TempTree(path(QString())).file(fileName(), QByteArray("Old|*.old\r\n").repeated(100));
    expectMessage(QtDebugMsg, QStringLiteral("write \"A|*.x\\n\\r\\n\""));
    expectMessage(QtDebugMsg, QStringLiteral("write \"B|*.y\\r\\n\""));
    expectMessage(QtDebugMsg, QStringLiteral("write \"\u00e4|*.z\\r\\n\""));
    expectMessage(QtDebugMsg, QStringLiteral("write \"\\r\\n\""));
    QVERIFY(MaskFile::save({QStringLiteral("A|*.x\n"),
                            QStringLiteral("B|*.y"),
                            QStringLiteral("\u00e4|*.z\r\n"),
                            QString()}));
    QCOMPARE(TempTree::read(path(fileName())),
             "A|*.x\n\r\nB|*.y\r\n" + QStringLiteral("\u00e4").toLocal8Bit() + "|*.z\r\n\r\n");
    QVERIFY(!QFileInfo::exists(MaskFile::readingPath()));
}

void tst_MaskFile::readsUtf8AndSavesInTheLocalEncoding()
{
    // Where the two differ, a letter is read as two bytes and saved as one.
    const QStringList entries = MaskFile::entries("\xc3\xa4\xe6\x97\xa5|*.x");
    QCOMPARE(entries, QStringList{QStringLiteral("\u00e4\u65e5|*.x")});
    expectMessage(QtDebugMsg, QStringLiteral("write \"\u00e4\u65e5|*.x\\r\\n\""));
    QVERIFY(MaskFile::save(entries));
    QCOMPARE(TempTree::read(path(fileName())),
             QByteArray(Toolkit::isInLatin1() ? "\xe4?|*.x\r\n" : "\xc3\xa4\xe6\x97\xa5|*.x\r\n"));
}

void tst_MaskFile::saveRefusesWhatIsNoRegularFile_data()
{
    QTest::addColumn<bool>("fifo");
    QTest::newRow("folder") << false;
    QTest::newRow("FIFO") << true;
}

void tst_MaskFile::saveRefusesWhatIsNoRegularFile()
{
    // A folder or a FIFO in the place of the saved file is left alone, at once.
    QFETCH(const bool, fifo);
    const TempTree tree(path(QString()));
    fifo ? tree.fifo(fileName()) : tree.folder(fileName());
    QVERIFY(!MaskFile::save({QStringLiteral("A|*.x\n")}));
    QVERIFY(!QFileInfo(path(fileName())).isFile());
}

void tst_MaskFile::saveReplacesListsOfTypesOnly_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("isReplaced");
    QTest::newRow("saved list") << QByteArray("A|*.x\n\r\nB|*.y\r\n") << true;
    QTest::newRow("default list") << QByteArray("A|*.x\nB|*.y\n") << true;
    QTest::newRow("entries in disorder") << QByteArray("A||\r\n\r\n|\r\n  \r\nB|*.y") << true;
    QTest::newRow("empty file") << QByteArray() << true;
    QTest::newRow("diary") << QByteArray("Dear diary,\ntoday nothing happened.\n") << false;
    QTest::newRow("a line of something else") << QByteArray("A|*.x\r\nB\r\nC|*.z\r\n") << false;
    QTest::newRow("something else at the end") << QByteArray("A|*.x\r\nB") << false;
    QTest::newRow("zero byte") << QByteArray("A|*.x\r\n|\0\r\n", 11) << false;
    QTest::newRow("something else behind what is read of a list")
        << QByteArray("A|*.x\r\n").repeated(MaskFile::maxEntries) + "B" << false;
}

void tst_MaskFile::saveReplacesListsOfTypesOnly()
{
    // A file of the same name that is no list of types stays as it is.
    QFETCH(const QByteArray, content);
    QFETCH(const bool, isReplaced);
    TempTree(path(QString())).file(fileName(), content);
    allowMessages(QRegularExpression(QStringLiteral("^write ")));
    QCOMPARE(MaskFile::save({QStringLiteral("New|*.n")}), isReplaced);
    QCOMPARE(TempTree::read(path(fileName())), isReplaced ? QByteArray("New|*.n\r\n") : content);
    QCOMPARE(QDir(path(QString())).entryList(QDir::Files), QStringList{fileName()});
}

void tst_MaskFile::saveReplacesTheFileThatIsRead()
{
    // Where both folders are one, whatever was read as a list of types is replaced.
    const TempTree data(QFileInfo(MaskFile::readingPath()).path());
    data.file(fileName(), "Lonely\n");
    QVERIFY(QDir::setCurrent(data.root()));
    allowMessages(QRegularExpression(QStringLiteral("^write ")));
    QVERIFY(MaskFile::save({QStringLiteral("Lonely\n")}));
    QCOMPARE(TempTree::read(MaskFile::readingPath()), QByteArray("Lonely\n\r\n"));
}

void tst_MaskFile::saveReplacesOnlyWhatIsReadWhole_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("isReplaced");
    const QByteArray line = "A|*.x\r\n";
    const QByteArray longest = QByteArray(MaskFile::maxLineBytes - 2, '|') + "\n";
    QTest::newRow("as many entries as are read") << line.repeated(MaskFile::maxEntries) << true;
    QTest::newRow("one more") << line.repeated(MaskFile::maxEntries) + line << false;
    QTest::newRow("one more, without an end")
        << line.repeated(MaskFile::maxEntries) + "A|" << false;
    QTest::newRow("as long a line as is read") << longest << true;
    QTest::newRow("a longer one") << "||" + longest << false;
    QTest::newRow("more bytes than are read")
        << longest.repeated(MaskFile::maxFileBytes / longest.size() + 1) << false;
}

void tst_MaskFile::saveReplacesOnlyWhatIsReadWhole()
{
    // What a reading leaves out of a list is not lost with the next change of it.
    QFETCH(const QByteArray, content);
    QFETCH(const bool, isReplaced);
    const TempTree data(QFileInfo(MaskFile::readingPath()).path());
    data.file(fileName(), content);
    QVERIFY(QDir::setCurrent(data.root()));
    allowMessages(QRegularExpression(QStringLiteral("^write ")));
    QCOMPARE(MaskFile::save({QStringLiteral("New|*.n")}), isReplaced);
    QCOMPARE(TempTree::read(MaskFile::readingPath()),
             isReplaced ? QByteArray("New|*.n\r\n") : content);
}

void tst_MaskFile::saveLeavesLinksAlone_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("to a diary") << QByteArray("Dear diary,\n");
    QTest::newRow("to a list of types") << QByteArray("Old|*.old\r\n");
    QTest::newRow("to the very list") << QByteArray("New|*.n\r\n");
    QTest::newRow("to nothing") << QByteArray();
}

void tst_MaskFile::saveLeavesLinksAlone()
{
    // A link in the place of the file is neither followed nor replaced, wherever it leads.
    QFETCH(const QByteArray, content);
    const TempTree tree(path(QString()));
    const QString target = tree.path(QStringLiteral("target"));
    if (!content.isEmpty()) {
        tree.file(QStringLiteral("target"), content);
    }
    tree.link(fileName(), target);
    QVERIFY(!MaskFile::save({QStringLiteral("New|*.n")}));
    QCOMPARE(QFile::symLinkTarget(path(fileName())), target);
    QCOMPARE(QFileInfo::exists(target), !content.isEmpty());
    QCOMPARE(content.isEmpty() ? content : TempTree::read(target), content);
}

void tst_MaskFile::savedListIsNotWrittenAgain()
{
    // A file that holds the list already stays the same file, untouched, and nothing is logged.
    const TempTree tree(path(QString()));
    tree.file(fileName(), "A|*.x\r\nB|*.y\r\n");
    struct stat before = {};
    QCOMPARE(::stat("ftie.dat", &before), 0);
    QVERIFY(MaskFile::save({QStringLiteral("A|*.x"), QStringLiteral("B|*.y\r\n")}));
    struct stat after = {};
    QCOMPARE(::stat("ftie.dat", &after), 0);
    QCOMPARE(after.st_ino, before.st_ino);
    expectMessage(QtDebugMsg, QStringLiteral("write \"A|*.x\\r\\n\""));
    QVERIFY(MaskFile::save({QStringLiteral("A|*.x")}));
    QCOMPARE(TempTree::read(path(fileName())), QByteArray("A|*.x\r\n"));
}

TWINSIFT_TEST_MAIN(tst_MaskFile)
#include "tst_MaskFile.moc"
