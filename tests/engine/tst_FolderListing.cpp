// SPDX-License-Identifier: MIT
#include "engine/FileMasks.h"
#include "engine/FolderListing.h"
#include "tests/support/RestrictedRights.h"
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"

#include <QDir>
#include <QRandomGenerator>

#include <algorithm>
#include <memory>

#include <sys/socket.h>
#include <sys/un.h>

class tst_FolderListing final : public TestCase
{
    Q_OBJECT

private slots:
    void init() override;
    void orderOfNames();
    void randomTrees_data();
    void randomTrees();
    void hiddenEntries();
    void links();
    void linksToOtherThings();
    void otherThings();
    void namesThatAreNoText();
    void strangeNames();
    void masksAreForFiles();
    void folderThatCannotBeRead();
    void folderWithoutEntry();
    void waysToNameAFolder();

private:
    void compareWithToolkit(const QStringList &masks = QStringList()) const;

    std::unique_ptr<TempTree> tree;
};

namespace
{
constexpr QDir::Filters fileFilters = QDir::Files | QDir::NoSymLinks | QDir::NoDotAndDotDot;
constexpr QDir::Filters folderFilters = QDir::Dirs | QDir::NoDotAndDotDot;

QStringList names(const QFileInfoList &infos)
{
    QStringList list;
    for (const QFileInfo &info : infos) {
        list.append(info.fileName());
    }
    return list;
}

QStringList names(const FolderListing::Entries &entries)
{
    QStringList list;
    for (const FolderListing::Folder &folder : entries.folders) {
        list.append(folder.name);
    }
    return list;
}

QStringList fileNames(const FolderListing::Entries &entries)
{
    QStringList list;
    for (const FolderListing::File &file : entries.files) {
        list.append(file.name);
    }
    return list;
}

const GoOn always = [] {
    return true;
};

// The toolkit leaves the order of names that differ in case alone to chance.
QStringList withTiesSettled(QStringList list)
{
    for (auto it = list.begin(); it != list.end();) {
        const auto end = std::find_if(it, list.end(), [it](const QString &name) {
            return name.toLower() != it->toLower();
        });
        std::sort(it, end);
        it = end;
    }
    return list;
}

FolderListing::Entries listAll(const QString &folder)
{
    return FolderListing::list(folder, FileMasks(QStringList()), always);
}
} // namespace

void tst_FolderListing::init()
{
    TestCase::init();
    tree = std::make_unique<TempTree>(path(QStringLiteral("tree")));
}

void tst_FolderListing::compareWithToolkit(const QStringList &masks) const
{
    const FolderListing::Entries entries =
        FolderListing::list(tree->root(), FileMasks(masks), always);
    const QDir dir(tree->root());
    const QFileInfoList folders = dir.entryInfoList(folderFilters, QDir::NoSort);
    QCOMPARE(fileNames(entries),
             withTiesSettled(names(dir.entryInfoList(masks, fileFilters, QDir::NoSort))));
    QCOMPARE(names(entries), withTiesSettled(names(folders)));
    for (const FolderListing::Folder &entry : entries.folders) {
        QCOMPARE(entry.isLink, QFileInfo(dir, entry.name).isSymLink());
    }
}

void tst_FolderListing::orderOfNames()
{
    // Files and folders come sorted by name ignoring case; names that differ in case alone come in
    // the order of their characters.
    for (const char *name : {"b", "C", "a", "B", "\xC3\x84", "z", "10", "9", "a b", "_", "ab"}) {
        tree->file(QString::fromUtf8(name));
        tree->folder(QStringLiteral("folder ") + QString::fromUtf8(name));
    }
    const FolderListing::Entries entries = listAll(tree->root());
    const QString umlaut = QString::fromUtf8("\xC3\x84");
    QStringList wanted;
    for (const char *name : {"10", "9", "_", "a", "a b", "ab", "B", "b", "C", "z"}) {
        wanted.append(QLatin1String(name));
    }
    wanted.append(umlaut);
    QCOMPARE(fileNames(entries), wanted);
    QCOMPARE(names(entries),
             wanted.replaceInStrings(QRegularExpression(QStringLiteral("^")),
                                     QStringLiteral("folder ")));
    compareWithToolkit();
}

void tst_FolderListing::randomTrees_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 30; ++seed) {
        QTest::newRow(QByteArray::number(seed).constData()) << seed;
    }
}

void tst_FolderListing::randomTrees()
{
    // Folders of all kinds of entries are listed as the toolkit lists them.
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    const QString letters = QString::fromUtf8("aAbBzZ019.._- \n'\"\xC3\xA4\xC3\x84\xE2\x82\xAC~#");
    const int count = random.bounded(80);
    for (int i = 0; i < count; ++i) {
        QString name;
        for (int length = random.bounded(1, 8); length > 0; --length) {
            name += letters.at(random.bounded(letters.size()));
        }
        const QString whole = tree->path(name);
        if (name == QLatin1String(".") || name == QLatin1String("..")
            || QFileInfo(whole).isSymLink() || QFileInfo::exists(whole)) {
            continue;
        }
        switch (random.bounded(6)) {
        case 0:
            tree->folder(name);
            break;
        case 1:
            tree->link(name, QStringLiteral("a"));
            break;
        case 2:
            tree->link(name, QStringLiteral(".."));
            break;
        case 3:
            tree->fifo(name);
            break;
        default:
            tree->file(name);
        }
    }
    compareWithToolkit();
    compareWithToolkit({QStringLiteral("*a*"), QStringLiteral("*.b")});
}

void tst_FolderListing::hiddenEntries()
{
    // Names that begin with a dot are left out, files and folders alike.
    tree->file(QStringLiteral(".hidden"));
    tree->folder(QStringLiteral(".folder"));
    tree->link(QStringLiteral(".link"), tree->root());
    tree->file(QStringLiteral("..two"));
    tree->file(QStringLiteral("seen"));
    const FolderListing::Entries entries = listAll(tree->root());
    QCOMPARE(fileNames(entries), QStringList{QStringLiteral("seen")});
    QVERIFY(entries.folders.isEmpty());
    compareWithToolkit();
}

void tst_FolderListing::links()
{
    // Links to files are left out, links to folders stand among the folders, dead ones nowhere.
    tree->file(QStringLiteral("file"));
    tree->folder(QStringLiteral("folder"));
    tree->link(QStringLiteral("to file"), QStringLiteral("file"));
    tree->link(QStringLiteral("to folder"), QStringLiteral("folder"));
    tree->link(QStringLiteral("to link"), QStringLiteral("to folder"));
    tree->link(QStringLiteral("dead"), QStringLiteral("nowhere"));
    tree->link(QStringLiteral("ring"), QStringLiteral("ring"));
    const FolderListing::Entries entries = listAll(tree->root());
    QCOMPARE(fileNames(entries), QStringList{QStringLiteral("file")});
    QCOMPARE(
        names(entries),
        QStringList(
            {QStringLiteral("folder"), QStringLiteral("to folder"), QStringLiteral("to link")}));
    compareWithToolkit();
}

void tst_FolderListing::linksToOtherThings()
{
    // The toolkit counts links to devices and FIFOs among the folders; they are kept there.
    tree->fifo(QStringLiteral("fifo"));
    tree->link(QStringLiteral("to device"), QStringLiteral("/dev/null"));
    tree->link(QStringLiteral("to fifo"), QStringLiteral("fifo"));
    const FolderListing::Entries entries = listAll(tree->root());
    QCOMPARE(names(entries), QStringList({QStringLiteral("to device"), QStringLiteral("to fifo")}));
    QVERIFY(entries.folders.at(0).isLink);
    QVERIFY(fileNames(entries).isEmpty());
    compareWithToolkit();
    // Entering one finds nothing, and does not wait for a writer.
    QVERIFY(listAll(tree->path(QStringLiteral("to fifo"))).files.isEmpty());
    QVERIFY(listAll(tree->path(QStringLiteral("to device"))).folders.isEmpty());
}

void tst_FolderListing::otherThings()
{
    // FIFOs and sockets are neither files nor folders.
    tree->fifo(QStringLiteral("fifo"));
    const int descriptor = ::socket(AF_UNIX, SOCK_STREAM, 0);
    QVERIFY(descriptor >= 0);
    QVERIFY(QDir::setCurrent(tree->root()));
    sockaddr address = {};
    address.sa_family = AF_UNIX;
    qstrncpy(address.sa_data, "socket", sizeof address.sa_data);
    const int bound = ::bind(descriptor, &address, sizeof address);
    ::close(descriptor);
    QCOMPARE(bound, 0);
    QVERIFY(QFileInfo::exists(tree->path(QStringLiteral("socket"))));
    const FolderListing::Entries entries = listAll(tree->root());
    QVERIFY(fileNames(entries).isEmpty());
    QVERIFY(entries.folders.isEmpty());
    compareWithToolkit();
}

void tst_FolderListing::namesThatAreNoText()
{
    // A name that is no valid UTF-8 is left out, as the toolkit leaves it out.
    QList<QByteArray> files;
    for (const char *name :
         {"bad\xFFname", "bad\xC3", "\xED\xA0\x80", "\xC0\xAF", "\xF5\x80\x80\x80"}) {
        const QByteArray whole = QFile::encodeName(tree->root()) + '/' + name;
        FILE *const file = std::fopen(whole.constData(), "w");
        QVERIFY(file != nullptr);
        std::fclose(file);
        files.append(whole);
    }
    tree->file(QStringLiteral("good"));
    QCOMPARE(fileNames(listAll(tree->root())), QStringList{QStringLiteral("good")});
    compareWithToolkit();
    // Nor would the toolkit clean them up.
    for (const QByteArray &file : files) {
        QCOMPARE(std::remove(file.constData()), 0);
    }
}

void tst_FolderListing::strangeNames()
{
    // Names of all letters, with line breaks, quotes and marks, come back as they are.
    QStringList wanted;
    for (const char *name : {"two words",
                             "two\nlines",
                             "\"quoted\"",
                             "it's",
                             "a.b.c",
                             "%1 %2",
                             "\xEF\xBB\xBFmark",
                             "\xF0\x9F\x98\x80",
                             "e\xCC\x81",
                             "\xEF\xBF\xBE"}) {
        tree->file(QString::fromUtf8(QByteArray("x") + name).mid(1));
        wanted.append(QString::fromUtf8(QByteArray("x") + name).mid(1));
    }
    QStringList files = fileNames(listAll(tree->root()));
    std::sort(files.begin(), files.end());
    std::sort(wanted.begin(), wanted.end());
    QCOMPARE(files, wanted);
    compareWithToolkit();
}

void tst_FolderListing::masksAreForFiles()
{
    // Masks choose files and let every folder pass.
    tree->file(QStringLiteral("a.jpg"));
    tree->file(QStringLiteral("b.png"));
    tree->folder(QStringLiteral("folder"));
    const FileMasks masks({QStringLiteral("*.JPG")});
    const FolderListing::Entries entries = FolderListing::list(tree->root(), masks, always);
    QCOMPARE(fileNames(entries), QStringList{QStringLiteral("a.jpg")});
    QCOMPARE(names(entries), QStringList{QStringLiteral("folder")});
}

void tst_FolderListing::folderThatCannotBeRead()
{
    // A folder without the right to read it is empty; without the right to enter it, its names are
    // listed all the same, as the toolkit lists them.
    tree->file(QStringLiteral("closed/file"));
    tree->file(QStringLiteral("listed/file"));
    tree->folder(QStringLiteral("listed/folder"));
    tree->setMode(QStringLiteral("closed"), 0311);
    tree->setMode(QStringLiteral("listed"), 0644);
    {
        const RestrictedRights rights;
        if (!rights.areRestricted()) {
            QSKIP("The super-user reads every folder here.");
        }
        QVERIFY(listAll(tree->path(QStringLiteral("closed"))).files.isEmpty());
        const QDir listed(tree->path(QStringLiteral("listed")));
        const FolderListing::Entries entries = listAll(listed.path());
        QCOMPARE(fileNames(entries), names(listed.entryInfoList(fileFilters, QDir::NoSort)));
        QCOMPARE(names(entries), names(listed.entryInfoList(folderFilters, QDir::NoSort)));
    }
    tree->setMode(QStringLiteral("closed"), 0755);
    tree->setMode(QStringLiteral("listed"), 0755);
}

void tst_FolderListing::folderWithoutEntry()
{
    // An empty folder, a missing one and a file have no entries.
    const QString file = tree->file(QStringLiteral("file"));
    const QString empty = tree->folder(QStringLiteral("folder"));
    for (const QString &place : {empty, tree->path(QStringLiteral("none")), file}) {
        QVERIFY(fileNames(listAll(place)).isEmpty());
        QVERIFY(listAll(place).folders.isEmpty());
    }
}

void tst_FolderListing::waysToNameAFolder()
{
    // A slash at the end, a relative name and an empty one (the current folder) all work.
    tree->file(QStringLiteral("file"));
    QVERIFY(QDir::setCurrent(tree->root()));
    for (const QString &name : {QString(tree->root() + QLatin1Char('/')),
                                QString(),
                                QStringLiteral("."),
                                QStringLiteral("../tree")}) {
        QCOMPARE(fileNames(listAll(name)), QStringList{QStringLiteral("file")});
    }
}

TWINSIFT_TEST_MAIN(tst_FolderListing)
#include "tst_FolderListing.moc"
