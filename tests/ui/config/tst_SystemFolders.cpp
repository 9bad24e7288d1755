// SPDX-License-Identifier: MIT
#include "tests/support/TestCase.h"
#include "ui/config/SystemFolders.h"

class tst_SystemFolders final : public TestCase
{
    Q_OBJECT

private slots:
    void excludedRoots_data();
    void excludedRoots();
    void partsOfTheText_data();
    void partsOfTheText();
    void foldersOfLinux_data();
    void foldersOfLinux();
};

namespace
{
void addRow(const char *where, bool wanted)
{
    QTest::newRow(where) << QString::fromLatin1(where) << wanted;
}

void addColumns()
{
    QTest::addColumn<QString>("where");
    QTest::addColumn<bool>("wanted");
}
} // namespace

void tst_SystemFolders::excludedRoots_data()
{
    addColumns();
    addRow("/", true);
    addRow("/Users", true);
    addRow("/users", false);
    addRow("/Users/somebody", false);
    addRow("/home/somebody", false);
    addRow("/x/home", false);
    addRow("", false);
#ifdef Q_OS_LINUX
    addRow("/home", true);
#else
    addRow("/home", false);
#endif
}

void tst_SystemFolders::excludedRoots()
{
    // The disk and the folder of everybody's homes, by exactly these names, are never selected.
    QFETCH(QString, where);
    QTEST(SystemFolders::isExcludedRoot(where), "wanted");
}

void tst_SystemFolders::partsOfTheText_data()
{
    addColumns();
    addRow("/Applications", true);
    addRow("/Library", true);
    addRow("/System", true);
    addRow("/System/Library/Fonts", true);
    addRow("/Users/somebody/Library", true);
    addRow("/home/somebody/Applications", true);
    addRow("/home/LibraryOfPictures", true);
    addRow("/", true);
    addRow("/Sys", true);
    addRow("/L", true);
    addRow("/home/library", false);
    addRow("/applications", false);
    addRow("/home/My Library", false);
    addRow("/home/System.old", true);
}

void tst_SystemFolders::partsOfTheText()
{
    // The path holds a system path anywhere, or is the beginning of one; case counts.
    QFETCH(QString, where);
    QTEST(SystemFolders::touches(where), "wanted");
}

void tst_SystemFolders::foldersOfLinux_data()
{
    addColumns();
    for (const char *const where :
         {"/usr", "/bin", "/sbin", "/lib", "/lib32", "/lib64", "/etc", "/boot", "/opt", "/snap"}) {
        addRow(where, true);
    }
    addRow("/var/lib", true);
    addRow("/var/lib/dpkg", true);
    addRow("/var", true);
    addRow("/usr/share/doc", true);
    addRow("/lib64/modules", true);
    addRow("/var/library", false);
    addRow("/var/log", false);
    addRow("/va", false);
    addRow("/us", false);
    addRow("/usrlocal", false);
    addRow("/etc.old", false);
    addRow("/home/x/usr", false);
    addRow("/home/x/lib", false);
    addRow("/home/x/var/lib", false);
    addRow("/home", false);
    addRow("/srv/opt", false);
    addRow("/USR", false);
}

void tst_SystemFolders::foldersOfLinux()
{
    // What is, lies in or holds a folder of that system; whole names only, from the root.
#ifndef Q_OS_LINUX
    QSKIP("These folders are looked for on Linux only");
#endif
    QFETCH(QString, where);
    QTEST(SystemFolders::touches(where), "wanted");
}

TWINSIFT_TEST_MAIN(tst_SystemFolders)
#include "tst_SystemFolders.moc"
