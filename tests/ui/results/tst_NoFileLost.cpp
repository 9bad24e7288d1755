// SPDX-License-Identifier: MIT
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "tests/ui/results/ResultsPage.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QMap>

/** What has become of every file once the results page has deleted some. */
class tst_NoFileLost final : public TestCase
{
    Q_OBJECT

private slots:
    void everyFileIsInItsPlaceOrInTheTrash();
    void movesWhatTheFileHasBecome_data();
    void movesWhatTheFileHasBecome();
    void deletesWhatTheRowNamesAlone_data();
    void deletesWhatTheRowNamesAlone();

private:
    QMap<QString, QByteArray> trashed() const;
};

namespace
{
// By their paths; of a link what it says, of a folder or a FIFO nothing.
QMap<QString, QByteArray> contentsBelow(const QString &root)
{
    QMap<QString, QByteArray> contents;
    QDirIterator all(root,
                     QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                     QDirIterator::Subdirectories);
    while (all.hasNext()) {
        const QFileInfo file(all.next());
        if (file.isSymLink()) {
            contents.insert(file.filePath(), "link to " + QFile::encodeName(file.symLinkTarget()));
        } else {
            contents.insert(file.filePath(),
                            file.isFile() ? TempTree::read(file.filePath()) : QByteArray());
        }
    }
    return contents;
}

QByteArray contentOf(int number)
{
    QByteArray content(number * 997, static_cast<char>(number));
    for (int i = 0; i < content.size(); i += 7) {
        content[i] = static_cast<char>(i);
    }
    return content;
}

// What becomes of the file at that path between the scan and the deletion.
void change(const TempTree &tree, const QString &name, const QString &kind)
{
    const QString file = tree.path(name);
    if (kind == QStringLiteral("grows")) {
        tree.file(name, "another, longer content");
        return;
    }
    if (!QFile::remove(file)) {
        qFatal("cannot remove %s", qPrintable(file));
    }
    if (kind == QStringLiteral("becomes a link to its twin")) {
        tree.link(name, tree.path(QStringLiteral("twin")));
    } else if (kind == QStringLiteral("becomes a link to a folder")) {
        tree.link(name, tree.path(QStringLiteral("folder")));
    } else if (kind == QStringLiteral("becomes a link to nothing")) {
        tree.link(name, tree.path(QStringLiteral("nothing")));
    } else if (kind == QStringLiteral("becomes a folder")) {
        tree.file(name + QStringLiteral("/inside"), "inside");
    } else if (kind == QStringLiteral("becomes a FIFO")) {
        tree.fifo(name);
    }
}

// A file that is shown with its twin, and stands beside a folder with a file in it.
QString scanned(const TempTree &tree, ResultsPage *results)
{
    tree.file(QStringLiteral("folder/neighbour"), "content");
    const QString file = tree.file(QStringLiteral("file"), "content");
    results->scanned({{file, tree.file(QStringLiteral("twin"), "content")}});
    return file;
}

void addChanges(const QStringList &kinds)
{
    QTest::addColumn<QString>("kind");
    for (const QString &kind : kinds) {
        QTest::newRow(qPrintable(kind)) << kind;
    }
}
} // namespace

// The contents of the trash by the paths that its notes tell.
QMap<QString, QByteArray> tst_NoFileLost::trashed() const
{
    const QString trash = homeTrash() + QLatin1Char('/');
    QMap<QString, QByteArray> contents;
    const auto files = contentsBelow(trash + QStringLiteral("files"));
    for (auto file = files.begin(); file != files.end(); ++file) {
        const QString inTrash = file.key().mid(trash.size() + 6);
        const QString name = inTrash.section(QLatin1Char('/'), 0, 0);
        const QByteArray note =
            TempTree::read(trash + QStringLiteral("info/") + name + QStringLiteral(".trashinfo"));
        const QByteArray path = QByteArray::fromPercentEncoding(note.split('\n').at(1).mid(5));
        contents.insert(QFile::decodeName(path) + inTrash.mid(name.size()), file.value());
    }
    return contents;
}

void tst_NoFileLost::everyFileIsInItsPlaceOrInTheTrash()
{
    // Ticked files are in the trash by their paths, byte for byte, and all others are as they were.
    const TempTree tree(path(QStringLiteral("tree")));
    const QStringList names = {QStringLiteral("same name"),
                               QStringLiteral("100%41.txt"),
                               QStringLiteral("line\nPath=/etc/passwd"),
                               QStringLiteral("\u00fc\u65e5.jpg"),
                               QStringLiteral(".hidden"),
                               QStringLiteral("-rf"),
                               QString(255, QLatin1Char('n'))};
    QList<QStringList> groups;
    for (int i = 0; i < names.size(); ++i) {
        QStringList group;
        for (const char *side : {"a", "b/c", "d e"}) {
            group.append(
                tree.file(QLatin1String(side) + QLatin1Char('/') + names.at(i), contentOf(i)));
        }
        groups.append(group);
    }
    tree.file(QStringLiteral("a/nobody's twin"), "alone");
    QMap<QString, QByteArray> left = contentsBelow(tree.root());
    QMap<QString, QByteArray> gone;
    ResultsPage results;
    results.scanned(groups);
    for (const QString &ticked : results.tickedPaths()) {
        gone.insert(ticked, left.take(ticked));
    }
    QCOMPARE(gone.size(), 2 * names.size());
    results.expectDeletion(static_cast<int>(gone.size()), QMessageBox::Yes);
    results.expectComplete();
    results.press(QStringLiteral("Delete Selected Files"));
    QCOMPARE(results.boxes.failures(), QStringList());
    QCOMPARE(contentsBelow(tree.root()), left);
    QCOMPARE(trashed(), gone);
}

void tst_NoFileLost::movesWhatTheFileHasBecome_data()
{
    addChanges({QStringLiteral("grows"),
                QStringLiteral("vanishes"),
                QStringLiteral("becomes a link to its twin"),
                QStringLiteral("becomes a link to a folder"),
                QStringLiteral("becomes a link to nothing"),
                QStringLiteral("becomes a folder"),
                QStringLiteral("becomes a FIFO")});
}

void tst_NoFileLost::movesWhatTheFileHasBecome()
{
    // What stands in the place of a ticked file goes to the trash whole, and nothing else does.
    QFETCH(QString, kind);
    const TempTree tree(path(QStringLiteral("tree")));
    ResultsPage results;
    const QString file = scanned(tree, &results);
    QCOMPARE(results.tickedPaths(), QStringList(file));
    change(tree, QStringLiteral("file"), kind);
    QMap<QString, QByteArray> left = contentsBelow(tree.root());
    QMap<QString, QByteArray> gone;
    for (const QString &name : left.keys()) {
        if (name == file || name.startsWith(file + QLatin1Char('/'))) {
            gone.insert(name, left.take(name));
        }
    }
    if (kind == QStringLiteral("vanishes")) {
        expectMessage(QtDebugMsg, QStringLiteral("Cannot remove file: ") + file);
    }
    results.expectDeletion(1, QMessageBox::Yes);
    results.expectComplete();
    results.press(QStringLiteral("Delete Selected Files"));
    QCOMPARE(results.boxes.failures(), QStringList());
    QCOMPARE(contentsBelow(tree.root()), left);
    QCOMPARE(trashed(), gone);
}

void tst_NoFileLost::deletesWhatTheRowNamesAlone_data()
{
    addChanges({QStringLiteral("grows"),
                QStringLiteral("vanishes"),
                QStringLiteral("becomes a link to its twin"),
                QStringLiteral("becomes a link to a folder"),
                QStringLiteral("becomes a link to nothing"),
                QStringLiteral("becomes a folder")});
}

void tst_NoFileLost::deletesWhatTheRowNamesAlone()
{
    // Of what stands in the place of the file, a file or a link goes; a folder stays with all in it.
    QFETCH(QString, kind);
    const TempTree tree(path(QStringLiteral("tree")));
    ResultsPage results;
    const QString file = scanned(tree, &results);
    change(tree, QStringLiteral("file"), kind);
    QMap<QString, QByteArray> left = contentsBelow(tree.root());
    if (kind != QStringLiteral("becomes a folder")) {
        left.remove(file);
    }
    results.expectBox(QMessageBox::Question,
                      QStringLiteral("Delete Duplicated Files"),
                      QStringLiteral("Start deleting ") + file
                          + QStringLiteral(" file. Are you sure?"),
                      QMessageBox::Yes);
    results.page.removeFile(file);
    QCOMPARE(results.boxes.failures(), QStringList());
    QCOMPARE(contentsBelow(tree.root()), left);
    QVERIFY(trashed().isEmpty());
}

TWINSIFT_TEST_MAIN(tst_NoFileLost)
#include "tst_NoFileLost.moc"
