// SPDX-License-Identifier: MIT
#include "tests/support/TempTree.h"
#include "tests/support/TestCase.h"
#include "tests/ui/config/FolderLoads.h"
#include "ui/config/FileSystemTreeModel.h"
#include "ui/config/SystemFolders.h"

#include <QAbstractItemModelTester>
#include <QDir>
#include <QFileInfo>
#include <QIdentityProxyModel>
#include <QSignalSpy>

#include <memory>

namespace
{
constexpr int loadMilliseconds = 30000;

// The tester fetches whatever it can, which would walk the whole disk.
class LoadedFoldersOnly final : public QIdentityProxyModel
{
public:
    bool canFetchMore(const QModelIndex &parent) const override
    {
        Q_UNUSED(parent)
        return false;
    }
};
} // namespace

#define TRY_VERIFY(condition) QTRY_VERIFY_WITH_TIMEOUT(condition, loadMilliseconds)
#define TRY_COMPARE(seen, wanted) QTRY_COMPARE_WITH_TIMEOUT(seen, wanted, loadMilliseconds)

class tst_FileSystemTreeModel final : public TestCase
{
    Q_OBJECT

protected slots:
    void init() override;
    void cleanup() override;

private slots:
    void showsOnlyTheNameColumn();
    void everyFolderHasACheckBox();
    void checkStateIsAnInteger();
    void otherRolesComeFromTheFileSystem();
    void tickIsStoredButReportedAsFailed();
    void otherRolesAreNotStored();
    void tickReachesLoadedChildrenAndFoldersAbove();
    void lastTickTakenAwayLeavesTheParentEmpty();
    void allLoadedChildrenTickTheParentWhileMoreAreOnDisk();
    void tickedFolderHandsItsTickDownWhenExpanded();
    void tickedFolderHandsItsTickDownToChildrenStillLoading();
    void tickReachesBelowExpandedFoldersOnly();
    void collapsingForgetsEveryExpansion();
    void partialFolderIsNotRecordedAsExpanded();
    void untickingReachesBelowExpandedFolders();
    void selectionIsReducedAndInTreeOrder();
    void selectionBelowAnIndex();
    void tickedRootStandsForItsTickedChildren();
    void selectionBelowTheRootIsThatOfItsChildren();
    void foldersStandInAlphabeticalOrder();
    void selectedPathsAreThoseOfTheModel();
    void libraryInsideAHomeFolderCounts();
    void newFolderMovesNoTick();
    void newFolderInATickedOneIsNotTicked();
    void newFolderTakesBackWhatItsSiblingsGave();
    void renamedFolderLosesItsTick();
    void deletedFolderTakesItsTickAlong();
    void deletedTickLeavesTheParentEmpty();
    void deletedUntickedFolderTicksNobody();
    void folderMadeAgainIsNotTicked();
    void manyChangesUnderExpandedFolders();
    void keepsTheRulesOfAModel();

private:
    void openAt(const QString &where);
    void load(const QString &where);
    QModelIndex at(const QString &where) const;
    Qt::CheckState state(const QString &where) const;
    void set(const QString &where, Qt::CheckState state);
    QStringList selected() const { return model->selectedFolders(QModelIndex()); }

    std::unique_ptr<TempTree> tree;
    std::unique_ptr<FileSystemTreeModel> model;
    std::unique_ptr<FolderLoads> loads;
    QString root;
};

void tst_FileSystemTreeModel::init()
{
    TestCase::init();
    tree = std::make_unique<TempTree>(path(QStringLiteral("root")));
    root = tree->root();
    model = std::make_unique<FileSystemTreeModel>(nullptr);
    model->setFilter(QDir::AllDirs | QDir::NoDot | QDir::NoDotDot);
    loads = std::make_unique<FolderLoads>(model.get());
}

void tst_FileSystemTreeModel::cleanup()
{
    loads.reset();
    model.reset();
    TestCase::cleanup();
}

void tst_FileSystemTreeModel::openAt(const QString &where)
{
    model->setRootPath(where);
    TRY_VERIFY(loads->contains(where));
}

void tst_FileSystemTreeModel::load(const QString &where)
{
    QVERIFY(at(where).isValid());
    QVERIFY(model->canFetchMore(at(where)));
    model->fetchMore(at(where));
    TRY_VERIFY(loads->contains(where));
}

QModelIndex tst_FileSystemTreeModel::at(const QString &where) const
{
    return model->index(where);
}

Qt::CheckState tst_FileSystemTreeModel::state(const QString &where) const
{
    return static_cast<Qt::CheckState>(model->data(at(where), Qt::CheckStateRole).toInt());
}

void tst_FileSystemTreeModel::set(const QString &where, Qt::CheckState state)
{
    QVERIFY(at(where).isValid());
    model->setData(at(where), state, Qt::CheckStateRole);
}

void tst_FileSystemTreeModel::showsOnlyTheNameColumn()
{
    // One column at every level.
    openAt(root);
    QCOMPARE(model->columnCount(), 1);
    QCOMPARE(model->columnCount(at(root)), 1);
}

void tst_FileSystemTreeModel::everyFolderHasACheckBox()
{
    // The base class's flags stay, checkable is added.
    openAt(root);
    const Qt::ItemFlags flags = model->flags(at(root));
    QVERIFY(flags & Qt::ItemIsUserCheckable);
    QCOMPARE(flags & ~Qt::ItemFlags(Qt::ItemIsUserCheckable),
             model->QFileSystemModel::flags(at(root)));
    QVERIFY(!(flags & Qt::ItemIsUserTristate));
}

void tst_FileSystemTreeModel::checkStateIsAnInteger()
{
    // A folder nobody ticked answers 0, and the three states are 0, 1 and 2.
    tree->folder(QStringLiteral("a"));
    tree->folder(QStringLiteral("b"));
    openAt(root);
    const QString a = tree->path(QStringLiteral("a"));
    const QVariant fresh = model->data(at(a), Qt::CheckStateRole);
    QCOMPARE(fresh, QVariant(0));
    QCOMPARE(fresh.userType(), int(QMetaType::Int));
    set(a, Qt::Checked);
    QCOMPARE(model->data(at(a), Qt::CheckStateRole), QVariant(2));
    QCOMPARE(model->data(at(root), Qt::CheckStateRole), QVariant(1));
    QCOMPARE(model->data(QModelIndex(), Qt::CheckStateRole), QVariant());
}

void tst_FileSystemTreeModel::otherRolesComeFromTheFileSystem()
{
    // Name and path are those of the folder, ticked or not.
    const QString a = tree->folder(QStringLiteral("a"));
    openAt(root);
    set(a, Qt::Checked);
    QCOMPARE(at(a).data().toString(), QStringLiteral("a"));
    QCOMPARE(at(a).data(QFileSystemModel::FilePathRole).toString(), a);
}

void tst_FileSystemTreeModel::tickIsStoredButReportedAsFailed()
{
    // setData returns false, stores the state all the same and emits no dataChanged.
    const QString a = tree->folder(QStringLiteral("a"));
    openAt(root);
    const QSignalSpy changed(model.get(),
                             SIGNAL(dataChanged(QModelIndex, QModelIndex, QVector<int>)));
    QCOMPARE(model->setData(at(a), Qt::Checked, Qt::CheckStateRole), false);
    QCOMPARE(state(a), Qt::Checked);
    QCOMPARE(changed.count(), 0);
}

void tst_FileSystemTreeModel::otherRolesAreNotStored()
{
    // A value of another role ticks nothing, and a read-only model renames nothing.
    const QString a = tree->folder(QStringLiteral("a"));
    openAt(root);
    QCOMPARE(model->setData(at(a), 2, Qt::EditRole), false);
    QCOMPARE(model->setData(at(a), 2, Qt::UserRole), false);
    QCOMPARE(state(a), Qt::Unchecked);
    QVERIFY(QFileInfo::exists(a));
}

void tst_FileSystemTreeModel::tickReachesLoadedChildrenAndFoldersAbove()
{
    // A ticked folder ticks its loaded children; the folder above becomes partial.
    const QString child = tree->folder(QStringLiteral("a/child"));
    const QString other = tree->folder(QStringLiteral("b"));
    openAt(root);
    load(tree->path(QStringLiteral("a")));
    set(tree->path(QStringLiteral("a")), Qt::Checked);
    QCOMPARE(state(child), Qt::Checked);
    QCOMPARE(state(other), Qt::Unchecked);
    QCOMPARE(state(root), Qt::PartiallyChecked);
    QCOMPARE(state(QFileInfo(root).path()), Qt::PartiallyChecked);
    QCOMPARE(selected(), QStringList(tree->path(QStringLiteral("a"))));
}

void tst_FileSystemTreeModel::lastTickTakenAwayLeavesTheParentEmpty()
{
    // Checked, partial, then nothing, as the children lose their ticks.
    const QString a = tree->folder(QStringLiteral("a"));
    const QString b = tree->folder(QStringLiteral("b"));
    openAt(root);
    set(a, Qt::Checked);
    set(b, Qt::Checked);
    QCOMPARE(state(root), Qt::Checked);
    set(a, Qt::Unchecked);
    QCOMPARE(state(root), Qt::PartiallyChecked);
    set(b, Qt::Unchecked);
    QCOMPARE(state(root), Qt::Unchecked);
    QCOMPARE(selected(), QStringList());
}

void tst_FileSystemTreeModel::allLoadedChildrenTickTheParentWhileMoreAreOnDisk()
{
    // The only loaded child ticks its parent, until the siblings are loaded and none was ticked.
    const QString inner = tree->folder(QStringLiteral("a/inner"));
    tree->folder(QStringLiteral("a/sibling"));
    const QString a = tree->path(QStringLiteral("a"));
    openAt(inner);
    QCOMPARE(model->rowCount(at(a)), 1);
    set(inner, Qt::Checked);
    QCOMPARE(state(a), Qt::Checked);
    QCOMPARE(state(root), Qt::Checked);
    load(a);
    QCOMPARE(model->rowCount(at(a)), 2);
    QCOMPARE(state(a), Qt::PartiallyChecked);
    QCOMPARE(state(root), Qt::PartiallyChecked);
    QCOMPARE(state(QDir::rootPath()), Qt::PartiallyChecked);
    QCOMPARE(selected(), QStringList(inner));
}

void tst_FileSystemTreeModel::tickedFolderHandsItsTickDownWhenExpanded()
{
    // Children loaded after the tick take it when the folder is expanded, not before.
    const QString child = tree->folder(QStringLiteral("a/child"));
    tree->folder(QStringLiteral("b"));
    const QString a = tree->path(QStringLiteral("a"));
    openAt(root);
    set(a, Qt::Checked);
    QCOMPARE(state(a), Qt::Checked);
    QCOMPARE(state(root), Qt::PartiallyChecked);
    load(a);
    QCOMPARE(state(child), Qt::Unchecked);
    model->expandedIndex(at(a));
    QCOMPARE(state(child), Qt::Checked);
}

void tst_FileSystemTreeModel::tickedFolderHandsItsTickDownToChildrenStillLoading()
{
    // A view reports the expansion first and the children come later: they are ticked too.
    const QString child = tree->folder(QStringLiteral("a/child"));
    const QString b = tree->folder(QStringLiteral("b"));
    tree->folder(QStringLiteral("b/child"));
    const QString a = tree->path(QStringLiteral("a"));
    openAt(root);
    set(a, Qt::Checked);
    model->expandedIndex(at(a));
    model->expandedIndex(at(b));
    load(a);
    load(b);
    QCOMPARE(state(child), Qt::Checked);
    QCOMPARE(state(tree->path(QStringLiteral("b/child"))), Qt::Unchecked);
    QCOMPARE(selected(), QStringList(a));
}

void tst_FileSystemTreeModel::tickReachesBelowExpandedFoldersOnly()
{
    // Below a collapsed child nothing is ticked; below expanded ones everything loaded is.
    const QString deep = tree->folder(QStringLiteral("a/open/inner/deep"));
    const QString closed = tree->folder(QStringLiteral("a/closed/inner"));
    openAt(root);
    for (const char *name : {"a", "a/open", "a/open/inner", "a/closed"}) {
        load(tree->path(QLatin1String(name)));
    }
    for (const char *name : {"a", "a/open", "a/open/inner"}) {
        model->expandedIndex(at(tree->path(QLatin1String(name))));
    }
    set(tree->path(QStringLiteral("a")), Qt::Checked);
    QCOMPARE(state(deep), Qt::Checked);
    QCOMPARE(state(tree->path(QStringLiteral("a/closed"))), Qt::Checked);
    QCOMPARE(state(closed), Qt::Unchecked);
}

void tst_FileSystemTreeModel::collapsingForgetsEveryExpansion()
{
    // A folder expanded twice and collapsed once is collapsed.
    const QString child = tree->folder(QStringLiteral("a/b/child"));
    openAt(root);
    load(tree->path(QStringLiteral("a")));
    load(tree->path(QStringLiteral("a/b")));
    model->expandedIndex(at(tree->path(QStringLiteral("a/b"))));
    model->expandedIndex(at(tree->path(QStringLiteral("a/b"))));
    model->unexpandedindex(at(tree->path(QStringLiteral("a/b"))));
    set(tree->path(QStringLiteral("a")), Qt::Checked);
    QCOMPARE(state(tree->path(QStringLiteral("a/b"))), Qt::Checked);
    QCOMPARE(state(child), Qt::Unchecked);
}

void tst_FileSystemTreeModel::partialFolderIsNotRecordedAsExpanded()
{
    // Its children stay as they are, also when the folder above is ticked later.
    const QString ticked = tree->folder(QStringLiteral("a/partial/ticked"));
    const QString plain = tree->folder(QStringLiteral("a/partial/plain"));
    const QString partial = tree->path(QStringLiteral("a/partial"));
    openAt(root);
    load(tree->path(QStringLiteral("a")));
    load(partial);
    set(ticked, Qt::Checked);
    QCOMPARE(state(partial), Qt::PartiallyChecked);
    model->expandedIndex(at(partial));
    QCOMPARE(state(ticked), Qt::Checked);
    QCOMPARE(state(plain), Qt::Unchecked);
    set(tree->path(QStringLiteral("a")), Qt::Checked);
    QCOMPARE(state(partial), Qt::Checked);
    QCOMPARE(state(plain), Qt::Unchecked);
}

void tst_FileSystemTreeModel::untickingReachesBelowExpandedFolders()
{
    // What a tick has reached, taking it away reaches too.
    const QString child = tree->folder(QStringLiteral("a/b/child"));
    openAt(root);
    load(tree->path(QStringLiteral("a")));
    load(tree->path(QStringLiteral("a/b")));
    model->expandedIndex(at(tree->path(QStringLiteral("a/b"))));
    set(tree->path(QStringLiteral("a")), Qt::Checked);
    QCOMPARE(state(child), Qt::Checked);
    set(tree->path(QStringLiteral("a")), Qt::Unchecked);
    QCOMPARE(state(child), Qt::Unchecked);
    QCOMPARE(state(root), Qt::Unchecked);
}

void tst_FileSystemTreeModel::selectionIsReducedAndInTreeOrder()
{
    // The highest ticked folders alone, in the order of the rows and not of the ticks.
    for (const char *name : {"a/one", "a/two", "b/one", "b/two", "c"}) {
        tree->folder(QLatin1String(name));
    }
    openAt(root);
    load(tree->path(QStringLiteral("a")));
    load(tree->path(QStringLiteral("b")));
    set(tree->path(QStringLiteral("b/two")), Qt::Checked);
    set(tree->path(QStringLiteral("a")), Qt::Checked);
    QStringList wanted;
    for (int row = 0; row < model->rowCount(at(root)); ++row) {
        const QString name = model->index(row, 0, at(root)).data().toString();
        if (name == QLatin1String("a")) {
            wanted.append(tree->path(QStringLiteral("a")));
        } else if (name == QLatin1String("b")) {
            wanted.append(tree->path(QStringLiteral("b/two")));
        }
    }
    QCOMPARE(wanted.size(), 2);
    QCOMPARE(selected(), wanted);
}

void tst_FileSystemTreeModel::selectionBelowAnIndex()
{
    // Below an unticked folder there is nothing, below a partial one what is ticked in it.
    const QString a = tree->folder(QStringLiteral("a"));
    const QString b = tree->folder(QStringLiteral("b"));
    openAt(root);
    set(a, Qt::Checked);
    QCOMPARE(model->selectedFolders(at(root)), QStringList(a));
    QCOMPARE(model->selectedFolders(at(a)), QStringList(a));
    QCOMPARE(model->selectedFolders(at(b)), QStringList());
}

void tst_FileSystemTreeModel::tickedRootStandsForItsTickedChildren()
{
    // "/" is never selected; its ticked children are listed instead.
    openAt(root);
    load(QDir::rootPath());
    const QModelIndex top = at(QDir::rootPath());
    model->setData(top, Qt::Checked, Qt::CheckStateRole);
    QStringList children;
    for (int row = 0; row < model->rowCount(top); ++row) {
        const QString where = model->filePath(model->index(row, 0, top));
        if (!SystemFolders::isExcludedRoot(where)) {
            children.append(where);
        }
    }
    QVERIFY(children.size() > 1);
    QCOMPARE(selected(), children);
    model->setData(model->index(0, 0, top), Qt::Unchecked, Qt::CheckStateRole);
    QCOMPARE(selected(), children.mid(1));
}

void tst_FileSystemTreeModel::selectionBelowTheRootIsThatOfItsChildren()
{
    // The index of "/" gives what is ticked in it, never "/" itself.
    openAt(root);
    load(QDir::rootPath());
    const QModelIndex top = at(QDir::rootPath());
    const QModelIndex first = model->index(0, 0, top);
    model->setData(first, Qt::Checked, Qt::CheckStateRole);
    QCOMPARE(model->selectedFolders(top), selected());
    model->setData(top, Qt::Checked, Qt::CheckStateRole);
    QVERIFY(!model->selectedFolders(top).isEmpty());
    QVERIFY(!model->selectedFolders(top).contains(QDir::rootPath()));
    QCOMPARE(model->selectedFolders(top), selected());
}

void tst_FileSystemTreeModel::selectedPathsAreThoseOfTheModel()
{
    // Also below links: each path is what the model itself calls the folder.
    for (const char *name : {"a/one", "a/two/x", "a/two/y", "target/inner", "b c/\303\244 |;"}) {
        tree->folder(QString::fromUtf8(name));
    }
    const QString link = tree->link(QStringLiteral("a/link"), tree->path(QStringLiteral("target")));
    openAt(root);
    load(tree->path(QStringLiteral("a")));
    load(tree->path(QStringLiteral("a/two")));
    load(tree->path(QStringLiteral("b c")));
    QStringList wanted;
    const QStringList ticked = {tree->path(QStringLiteral("a/one")),
                                tree->path(QStringLiteral("a/two/x")),
                                link,
                                tree->path(QString::fromUtf8("b c/\303\244 |;"))};
    for (const QString &where : ticked) {
        set(where, Qt::Checked);
        wanted.append(model->filePath(at(where)));
    }
    // The only folder of "b c" ticks that one.
    wanted.last() = tree->path(QStringLiteral("b c"));
    QStringList seen = selected();
    seen.sort();
    wanted.sort();
    QCOMPARE(seen, wanted);
}

void tst_FileSystemTreeModel::libraryInsideAHomeFolderCounts()
{
    // Ticking it raises the warning, unticking it lowers it again.
    const QString library = tree->folder(QStringLiteral("Library"));
    const QString other = tree->folder(QStringLiteral("pictures"));
    openAt(root);
    QVERIFY(!model->isOneOfSystemFolders());
    set(other, Qt::Checked);
    QVERIFY(!model->isOneOfSystemFolders());
    tree->folder(QStringLiteral("third"));
    TRY_COMPARE(model->rowCount(at(root)), 3);
    set(library, Qt::Checked);
    QVERIFY(model->isOneOfSystemFolders());
    set(library, Qt::Unchecked);
    QVERIFY(!model->isOneOfSystemFolders());
}

void tst_FileSystemTreeModel::newFolderMovesNoTick()
{
    // Rows move when a folder appears; each tick stays with its folder.
    const QString b = tree->folder(QStringLiteral("b"));
    const QString d = tree->folder(QStringLiteral("d"));
    openAt(root);
    TRY_COMPARE(at(b).row(), 0);
    set(b, Qt::Checked);
    const QString a = tree->folder(QStringLiteral("a"));
    TRY_COMPARE(model->rowCount(at(root)), 3);
    TRY_COMPARE(at(b).row(), 1);
    QCOMPARE(state(a), Qt::Unchecked);
    QCOMPARE(state(b), Qt::Checked);
    QCOMPARE(state(d), Qt::Unchecked);
    QCOMPARE(selected(), QStringList(b));
    set(b, Qt::Unchecked);
    QVERIFY(QDir().rmdir(a));
    TRY_COMPARE(model->rowCount(at(root)), 2);
    QCOMPARE(selected(), QStringList());
}

void tst_FileSystemTreeModel::newFolderInATickedOneIsNotTicked()
{
    // The ticked folder stays selected as a whole; the new one gets no tick of its own.
    const QString old = tree->folder(QStringLiteral("a/old"));
    tree->folder(QStringLiteral("b"));
    const QString a = tree->path(QStringLiteral("a"));
    openAt(root);
    load(a);
    model->expandedIndex(at(a));
    set(a, Qt::Checked);
    const QString young = tree->folder(QStringLiteral("a/young"));
    TRY_COMPARE(model->rowCount(at(a)), 2);
    QCOMPARE(state(young), Qt::Unchecked);
    QCOMPARE(selected(), QStringList(a));
    set(old, Qt::Unchecked);
    QCOMPARE(selected(), QStringList());
}

void tst_FileSystemTreeModel::newFolderTakesBackWhatItsSiblingsGave()
{
    // A folder ticked through its children alone is not selected once another child appears.
    const QString one = tree->folder(QStringLiteral("a/one"));
    const QString a = tree->path(QStringLiteral("a"));
    tree->folder(QStringLiteral("b"));
    openAt(root);
    load(a);
    set(one, Qt::Checked);
    QCOMPARE(selected(), QStringList(a));
    tree->folder(QStringLiteral("a/two"));
    TRY_COMPARE(model->rowCount(at(a)), 2);
    QCOMPARE(state(a), Qt::PartiallyChecked);
    QCOMPARE(selected(), QStringList(one));
}

void tst_FileSystemTreeModel::renamedFolderLosesItsTick()
{
    // Under its new name it is a folder that nobody ticked.
    const QString a = tree->folder(QStringLiteral("a"));
    const QString b = tree->folder(QStringLiteral("b"));
    const QString c = tree->path(QStringLiteral("c"));
    openAt(root);
    set(a, Qt::Checked);
    QVERIFY(QDir().rename(a, c));
    TRY_VERIFY(!model->index(0, 0, at(root)).data().toString().startsWith(QLatin1Char('a'))
               && model->rowCount(at(root)) == 2);
    QCOMPARE(state(c), Qt::Unchecked);
    QCOMPARE(state(b), Qt::Unchecked);
    QCOMPARE(state(root), Qt::Unchecked);
    QCOMPARE(selected(), QStringList());
}

void tst_FileSystemTreeModel::deletedFolderTakesItsTickAlong()
{
    // The others keep theirs, although their rows move.
    const QString a = tree->folder(QStringLiteral("a"));
    const QString b = tree->folder(QStringLiteral("b"));
    const QString c = tree->folder(QStringLiteral("c"));
    tree->folder(QStringLiteral("d"));
    openAt(root);
    set(a, Qt::Checked);
    set(c, Qt::Checked);
    QVERIFY(QDir().rmdir(a));
    TRY_COMPARE(model->rowCount(at(root)), 3);
    QCOMPARE(state(b), Qt::Unchecked);
    QCOMPARE(selected(), QStringList(c));
}

void tst_FileSystemTreeModel::deletedTickLeavesTheParentEmpty()
{
    // A folder ticked through its only child is not selected when that child is gone.
    const QString one = tree->folder(QStringLiteral("a/one"));
    const QString a = tree->path(QStringLiteral("a"));
    tree->folder(QStringLiteral("b"));
    openAt(root);
    load(a);
    set(one, Qt::Checked);
    QCOMPARE(state(a), Qt::Checked);
    QVERIFY(QDir().rmdir(one));
    TRY_COMPARE(model->rowCount(at(a)), 0);
    QCOMPARE(state(a), Qt::Unchecked);
    QCOMPARE(state(root), Qt::Unchecked);
    QCOMPARE(selected(), QStringList());
}

void tst_FileSystemTreeModel::deletedUntickedFolderTicksNobody()
{
    // A partial folder does not become ticked because its unticked child is deleted.
    const QString one = tree->folder(QStringLiteral("a/one"));
    const QString two = tree->folder(QStringLiteral("a/two"));
    const QString a = tree->path(QStringLiteral("a"));
    tree->folder(QStringLiteral("b"));
    openAt(root);
    load(a);
    set(one, Qt::Checked);
    QVERIFY(QDir().rmdir(two));
    TRY_COMPARE(model->rowCount(at(a)), 1);
    QCOMPARE(state(a), Qt::PartiallyChecked);
    QCOMPARE(selected(), QStringList(one));
}

void tst_FileSystemTreeModel::folderMadeAgainIsNotTicked()
{
    // A new folder of the same name, with the same expanded folders in it, starts unticked.
    const QString a = tree->folder(QStringLiteral("a"));
    const QString inner = tree->folder(QStringLiteral("a/inner"));
    tree->folder(QStringLiteral("b"));
    openAt(root);
    load(a);
    model->expandedIndex(at(a));
    set(a, Qt::Checked);
    QCOMPARE(state(inner), Qt::Checked);
    QVERIFY(QDir(a).removeRecursively());
    TRY_COMPARE(model->rowCount(at(root)), 1);
    QVERIFY(!at(a).isValid());
    tree->folder(QStringLiteral("a/inner"));
    TRY_COMPARE(model->rowCount(at(root)), 2);
    QCOMPARE(state(a), Qt::Unchecked);
    load(a);
    QCOMPARE(state(inner), Qt::Unchecked);
    QCOMPARE(selected(), QStringList());
}

void tst_FileSystemTreeModel::manyChangesUnderExpandedFolders()
{
    // Folders come and go, memory is used again, and only the one ticked folder is ever selected.
    const QString kept = tree->folder(QStringLiteral("kept"));
    openAt(root);
    tree->folder(QStringLiteral("other"));
    TRY_COMPARE(model->rowCount(at(root)), 2);
    set(kept, Qt::Checked);
    for (int round = 0; round < 5; ++round) {
        const int count = 20;
        for (int i = 0; i < count; ++i) {
            tree->folder(QStringLiteral("r%1-%2/inner").arg(round).arg(i));
        }
        TRY_COMPARE(model->rowCount(at(root)), count + 2);
        QCOMPARE(selected(), QStringList(kept));
        for (int i = 0; i < count; i += 2) {
            const QString where = tree->path(QStringLiteral("r%1-%2").arg(round).arg(i));
            model->expandedIndex(at(where));
            load(where);
            set(where, Qt::Checked);
        }
        QCOMPARE(selected().size(), count / 2 + 1);
        for (int i = 0; i < count; ++i) {
            QVERIFY(
                QDir(tree->path(QStringLiteral("r%1-%2").arg(round).arg(i))).removeRecursively());
        }
        TRY_COMPARE(model->rowCount(at(root)), 2);
        QCOMPARE(selected(), QStringList(kept));
    }
}

void tst_FileSystemTreeModel::foldersStandInAlphabeticalOrder()
{
    // Beside and above the chosen folder, too, the folder itself included; new ones find their place.
    for (const char *name : {"m/q", "b", "Z", "a", "y/2", "y/1", "C"}) {
        tree->folder(QLatin1String(name));
    }
    openAt(tree->path(QStringLiteral("m")));
    load(root);
    load(tree->path(QStringLiteral("y")));
    const auto names = [this](const QString &where) {
        QStringList all;
        for (int row = 0; row < model->rowCount(at(where)); ++row) {
            all.append(model->index(row, 0, at(where)).data().toString());
        }
        return all.join(QLatin1Char(' '));
    };
    QTRY_COMPARE(names(root), QStringLiteral("a b C m y Z"));
    QTRY_COMPARE(names(tree->path(QStringLiteral("y"))), QStringLiteral("1 2"));
    QCOMPARE(model->rootPath(), tree->path(QStringLiteral("m")));
    tree->folder(QStringLiteral("D"));
    QTRY_COMPARE(names(root), QStringLiteral("a b C D m y Z"));
    // The chosen folder is still looked at.
    tree->folder(QStringLiteral("m/p"));
    QTRY_COMPARE(names(tree->path(QStringLiteral("m"))), QStringLiteral("p q"));
}

void tst_FileSystemTreeModel::keepsTheRulesOfAModel()
{
    // The tester finds nothing while folders load, are ticked, appear and disappear.
    LoadedFoldersOnly loadedFolders;
    loadedFolders.setSourceModel(model.get());
    const QAbstractItemModelTester tester(&loadedFolders,
                                          QAbstractItemModelTester::FailureReportingMode::QtTest);
    const QString a = tree->folder(QStringLiteral("a/inner"));
    openAt(root);
    load(tree->path(QStringLiteral("a")));
    set(a, Qt::Checked);
    const QString b = tree->folder(QStringLiteral("b"));
    TRY_COMPARE(model->rowCount(at(root)), 2);
    QVERIFY(QDir().rmdir(b));
    TRY_COMPARE(model->rowCount(at(root)), 1);
    QCOMPARE(state(tree->path(QStringLiteral("a"))), Qt::Checked);
}

TWINSIFT_TEST_MAIN(tst_FileSystemTreeModel)
#include "tst_FileSystemTreeModel.moc"
