// SPDX-License-Identifier: MIT
#include "ui/config/SystemFolders.h"

#include <QStringList>

#include <algorithm>

namespace
{
#ifdef Q_OS_LINUX
constexpr bool isLinux = true;
#else
constexpr bool isLinux = false;
#endif

bool touchesByText(const QString &folder)
{
    static const QStringList systemFolders = {QStringLiteral("/Applications"),
                                              QStringLiteral("/Library"),
                                              QStringLiteral("/System")};
    return std::any_of(systemFolders.cbegin(), systemFolders.cend(), [&](const QString &system) {
        return folder.contains(system) || system.startsWith(folder);
    });
}

bool isInOrIs(const QString &inner, const QString &outer)
{
    return inner.startsWith(outer)
        && (inner.size() == outer.size() || outer.endsWith(QLatin1Char('/'))
            || inner.at(outer.size()) == QLatin1Char('/'));
}

// "/lib" stands for all of "/lib", "/lib32", "/lib64", "/libx32".
bool isLibraryFolder(const QString &folder)
{
    return folder.section(QLatin1Char('/'), 0, 0).isEmpty()
        && folder.section(QLatin1Char('/'), 1, 1).startsWith(QLatin1String("lib"));
}

bool touchesByNames(const QString &folder)
{
    static const QStringList systemFolders = {QStringLiteral("/usr"),
                                              QStringLiteral("/bin"),
                                              QStringLiteral("/sbin"),
                                              QStringLiteral("/etc"),
                                              QStringLiteral("/boot"),
                                              QStringLiteral("/opt"),
                                              QStringLiteral("/var/lib"),
                                              QStringLiteral("/snap")};
    return isLibraryFolder(folder)
        || std::any_of(systemFolders.cbegin(), systemFolders.cend(), [&](const QString &system) {
               return isInOrIs(folder, system) || isInOrIs(system, folder);
           });
}
} // namespace

bool SystemFolders::isExcludedRoot(const QString &path)
{
    return path == QLatin1String("/") || path == QLatin1String("/Users")
        || (isLinux && path == QLatin1String("/home"));
}

bool SystemFolders::touches(const QString &folder)
{
    return touchesByText(folder) || (isLinux && touchesByNames(folder));
}
