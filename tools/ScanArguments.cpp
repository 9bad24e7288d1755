// SPDX-License-Identifier: MIT
#include "tools/ScanArguments.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <limits>

namespace
{
const QString advancedOption = QStringLiteral("advanced");
const QString sameNameOption = QStringLiteral("same-name");
const QString sameExtensionOption = QStringLiteral("same-extension");
const QString sameDateOption = QStringLiteral("same-date");
const QString includeMasksOption = QStringLiteral("include");
const QString excludeMasksOption = QStringLiteral("exclude");
const QString minKbOption = QStringLiteral("min-kb");
const QString maxKbOption = QStringLiteral("max-kb");
const QString print0Option = QStringLiteral("print0");
const QString eventsOption = QStringLiteral("events");
const QString stopAfterOption = QStringLiteral("stop-after");

void addOptions(QCommandLineParser *parser)
{
    parser->setApplicationDescription(QStringLiteral(
        "Finds files of equal content and prints their names, a group after the other.\n"
        "It reads files and never changes one."));
    parser->addPositionalArgument(QStringLiteral("FOLDER"),
                                  QStringLiteral("Folders to scan, with all below them."),
                                  QStringLiteral("FOLDER..."));
    const QString masks = QStringLiteral("MASKS");
    const QString number = QStringLiteral("N");
    parser->addOptions({
        {advancedOption,
         QStringLiteral("Compare checksums of the contents (md5, sha1 or crc) instead of matching "
                        "byte by byte."),
         QStringLiteral("md5|sha1|crc")},
        {sameNameOption, QStringLiteral("Duplicates have the same name up to its first dot.")},
        {sameExtensionOption,
         QStringLiteral("Duplicates have the same name behind its first dot.")},
        {sameDateOption, QStringLiteral("Duplicates have the same date of creation.")},
        {includeMasksOption,
         QStringLiteral("Take files that match one of these masks, such as \"*.jpg;*.png\"."),
         masks},
        {excludeMasksOption,
         QStringLiteral("Leave out files with these endings, such as \"*.bak\"."),
         masks},
        {minKbOption, QStringLiteral("Leave out files of fewer kilobytes."), number},
        {maxKbOption, QStringLiteral("Leave out files of more kilobytes."), number},
        {print0Option, QStringLiteral("End a name, and a group, in NUL instead of a line feed.")},
        {eventsOption, QStringLiteral("Print each signal of the scan to standard error.")},
        {stopAfterOption, QStringLiteral("Stop the scan after that many signals."), number},
    });
    parser->addOption({QStringLiteral("help"), QStringLiteral("Print this help.")});
    parser->addOption({QStringLiteral("version"), QStringLiteral("Print the version.")});
}

bool readMode(const QCommandLineParser &parser, ScanArguments *arguments)
{
    ScanProfile &profile = arguments->profile;
    profile.sameFileName = parser.isSet(sameNameOption);
    profile.sameFileExtension = parser.isSet(sameExtensionOption);
    profile.sameDateOfCreation = parser.isSet(sameDateOption);
    if (!parser.isSet(advancedOption)) {
        return true;
    }
    const QString checksum = parser.value(advancedOption);
    profile.matchByteByByte = false;
    profile.advancedMatch = true;
    profile.md5Hash = checksum == QLatin1String("md5");
    profile.sha1Hash = checksum == QLatin1String("sha1");
    profile.crcHash = checksum == QLatin1String("crc");
    arguments->error =
        QStringLiteral("--advanced takes md5, sha1 or crc, not \"%1\"").arg(checksum);
    return profile.md5Hash || profile.sha1Hash || profile.crcHash;
}

void readMasks(const QCommandLineParser &parser, ScanProfile *profile)
{
    if (parser.isSet(includeMasksOption)) {
        profile->includeMasks = parser.value(includeMasksOption).split(QLatin1Char(';'));
    }
    if (parser.isSet(excludeMasksOption)) {
        profile->excludeMasks = parser.value(excludeMasksOption).split(QLatin1Char(';'));
    }
}

// False for anything else than a number between the two; an option not given is left alone.
bool readNumber(const QCommandLineParser &parser,
                const QString &option,
                qint64 minimum,
                qint64 maximum,
                qint64 *number,
                QString *error)
{
    if (!parser.isSet(option)) {
        return true;
    }
    bool isNumber = false;
    *number = parser.value(option).toLongLong(&isNumber);
    *error = QStringLiteral("--%1 takes a number, not \"%2\"").arg(option, parser.value(option));
    if (isNumber) {
        *error = QStringLiteral("--%1 takes a number from %2 to %3, not %4")
                     .arg(option)
                     .arg(minimum)
                     .arg(maximum)
                     .arg(*number);
    }
    return isNumber && *number >= minimum && *number <= maximum;
}

bool readNumbers(const QCommandLineParser &parser, ScanArguments *arguments)
{
    constexpr qint64 lowest = std::numeric_limits<qint64>::min();
    constexpr qint64 highest = std::numeric_limits<qint64>::max();
    ScanProfile &profile = arguments->profile;
    QString *const error = &arguments->error;
    profile.minSizeEnabled = parser.isSet(minKbOption);
    profile.maxSizeEnabled = parser.isSet(maxKbOption);
    qint64 signalCount = 0;
    if (!readNumber(parser, minKbOption, lowest, highest, &profile.minSizeInKbytes, error)
        || !readNumber(parser, maxKbOption, lowest, highest, &profile.maxSizeInKbytes, error)
        || !readNumber(parser,
                       stopAfterOption,
                       1,
                       std::numeric_limits<int>::max(),
                       &signalCount,
                       error)) {
        return false;
    }
    arguments->stopAfter = static_cast<int>(signalCount);
    return true;
}

// The walk does not enter hidden folders, so what lies behind one is not reached.
bool isReachedFrom(const QString &folder, const QString &other)
{
    const QString prefix =
        other.endsWith(QLatin1Char('/')) ? other : QString(other + QLatin1Char('/'));
    return folder != other && folder.startsWith(prefix)
        && !folder.midRef(prefix.size() - 1).contains(QLatin1String("/."));
}

bool readFolders(const QStringList &names, ScanArguments *arguments)
{
    QStringList folders;
    for (const QString &name : names) {
        // Absolute before it is looked at: the toolkit takes ":/" for what is compiled into it.
        const bool isRelative = !name.isEmpty() && !name.startsWith(QLatin1Char('/'));
        const QString path = isRelative ? QDir::currentPath() + QLatin1Char('/') + name : name;
        const QFileInfo info(path);
        if (!info.isDir()) {
            arguments->error = info.exists() ? QStringLiteral("\"%1\" is not a folder").arg(name)
                                             : QStringLiteral("\"%1\" does not exist").arg(name);
            return false;
        }
        folders.append(QDir::cleanPath(path));
    }
    folders.removeDuplicates();
    for (const QString &folder : qAsConst(folders)) {
        const auto reaches = [&folder](const QString &other) {
            return isReachedFrom(folder, other);
        };
        if (std::none_of(folders.cbegin(), folders.cend(), reaches)) {
            arguments->folders.append(folder);
        }
    }
    arguments->error = QStringLiteral("no folder is given");
    return !folders.isEmpty();
}
} // namespace

ScanArguments ScanArguments::parse(const QStringList &arguments)
{
    ScanArguments result;
    QCommandLineParser parser;
    addOptions(&parser);
    result.helpText = parser.helpText();
    if (!parser.parse(arguments)) {
        result.error = parser.errorText();
        return result;
    }
    if (parser.isSet(QStringLiteral("help"))) {
        result.action = Action::ShowHelp;
        return result;
    }
    if (parser.isSet(QStringLiteral("version"))) {
        result.action = Action::ShowVersion;
        return result;
    }
    result.print0 = parser.isSet(print0Option);
    result.printsEvents = parser.isSet(eventsOption);
    readMasks(parser, &result.profile);
    if (readMode(parser, &result) && readNumbers(parser, &result)
        && readFolders(parser.positionalArguments(), &result)) {
        result.action = Action::Scan;
        result.error.clear();
    }
    return result;
}
