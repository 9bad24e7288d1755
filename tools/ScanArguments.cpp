// SPDX-License-Identifier: MIT
#include "tools/ScanArguments.h"

#include "tools/FolderArguments.h"

#include <QCommandLineParser>
#include <QPair>
#include <QRegularExpression>
#include <QVector>

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
const QString minSizeOption = QStringLiteral("min-size");
const QString maxSizeOption = QStringLiteral("max-size");
const QString hiddenOption = QStringLiteral("hidden");
const QString noLinksOption = QStringLiteral("no-links");
const QString oneFileSystemOption = QStringLiteral("one-file-system");
const QString filesFromOption = QStringLiteral("files-from");
const QString joinedOption = QStringLiteral("joined");
const QString omitFirstOption = QStringLiteral("omit-first");
const QString sortOption = QStringLiteral("sort");
const QString print0Option = QStringLiteral("print0");
const QString separatorOption = QStringLiteral("separator");
const QString jsonOption = QStringLiteral("json");
const QString csvOption = QStringLiteral("csv");
const QString summaryOption = QStringLiteral("summary");
const QString quietOption = QStringLiteral("quiet");
const QString noMessagesOption = QStringLiteral("no-messages");
const QString eventsOption = QStringLiteral("events");
const QString stopAfterOption = QStringLiteral("stop-after");

void addScanOptions(QCommandLineParser *parser)
{
    const QString masks = QStringLiteral("MASKS");
    const QString number = QStringLiteral("N");
    const QString size = QStringLiteral("SIZE");
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
        {minSizeOption,
         QStringLiteral("Leave out files of fewer bytes; 20K, 3M and 1G count by 1024."),
         size},
        {maxSizeOption, QStringLiteral("Leave out files of more bytes."), size},
        {hiddenOption, QStringLiteral("Take hidden files and folders as well.")},
        {noLinksOption, QStringLiteral("Do not follow links to folders.")},
        {oneFileSystemOption, QStringLiteral("Stay on the file system of each folder.")},
        {filesFromOption,
         QStringLiteral("Read more folders from this list, which is separated by line feeds or "
                        "NUL; - is standard input."),
         QStringLiteral("LIST")},
    });
}

void addOutputOptions(QCommandLineParser *parser)
{
    parser->addOptions({
        {joinedOption,
         QStringLiteral(
             "Print the groups as the window shows them: files of one size in one group, "
             "also where they are copies of different files.")},
        {{QStringLiteral("f"), omitFirstOption},
         QStringLiteral("Leave out the first file of each group.")},
        {sortOption,
         QStringLiteral("Sort the groups by first path, or with the largest first."),
         QStringLiteral("path|size|count")},
        {{QStringLiteral("0"), print0Option},
         QStringLiteral("End a name, and a group, in NUL instead of a line feed.")},
        {separatorOption,
         QStringLiteral("What stands between groups: a blank line, or nothing."),
         QStringLiteral("none|blank")},
        {jsonOption, QStringLiteral("Print a JSON document.")},
        {csvOption, QStringLiteral("Print a CSV table of group, size and path.")},
        {summaryOption, QStringLiteral("Print what was found, in figures, to standard error.")},
        {{QStringLiteral("q"), quietOption},
         QStringLiteral("Show no progress and no figures on a terminal.")},
        {noMessagesOption, QStringLiteral("Do not name what cannot be read.")},
        {eventsOption, QStringLiteral("Print each signal of the scan to standard error.")},
        {stopAfterOption,
         QStringLiteral("Stop the scan after that many signals."),
         QStringLiteral("N")},
        {{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Print this help.")},
        {QStringLiteral("version"), QStringLiteral("Print the version.")},
    });
}

void addOptions(QCommandLineParser *parser)
{
    parser->setApplicationDescription(QStringLiteral(
        "Finds files of equal content and prints their names, a group after the other.\n"
        "It reads files and never changes one."));
    parser->addPositionalArgument(QStringLiteral("FOLDER"),
                                  QStringLiteral("Folders to scan, with all below them."),
                                  QStringLiteral("FOLDER..."));
    addScanOptions(parser);
    addOutputOptions(parser);
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

// A number of bytes, with K, M, G or T behind it that many times 1024 of the one before.
bool readSize(const QCommandLineParser &parser,
              const QString &option,
              qint64 *bytes,
              QString *error)
{
    if (!parser.isSet(option)) {
        return true;
    }
    static const QRegularExpression form(QStringLiteral("^([0-9]+)([KMGTkmgt]?)$"));
    const QRegularExpressionMatch match = form.match(parser.value(option));
    const auto power = QStringLiteral("KMGT").indexOf(match.captured(2).toUpper()) + 1;
    const qint64 unit = Q_INT64_C(1) << (match.capturedLength(2) > 0 ? 10 * power : 0);
    bool isNumber = false;
    const qint64 number = match.captured(1).toLongLong(&isNumber);
    if (!isNumber || number > std::numeric_limits<qint64>::max() / unit) {
        *error = QStringLiteral("--%1 takes a size such as 500, 20K, 3M or 1G, not \"%2\"")
                     .arg(option, parser.value(option));
        return false;
    }
    *bytes = number * unit;
    return true;
}

bool readWalkOptions(const QCommandLineParser &parser, ScanArguments *arguments)
{
    WalkOptions &walk = arguments->walkOptions;
    walk.followsLinks = !parser.isSet(noLinksOption);
    walk.takesHidden = parser.isSet(hiddenOption);
    walk.staysOnFileSystem = parser.isSet(oneFileSystemOption);
    return readSize(parser, minSizeOption, &walk.minBytes, &arguments->error)
        && readSize(parser, maxSizeOption, &walk.maxBytes, &arguments->error);
}

// False where two are given of which one would make the other void, or dangerous.
bool checkForConflicts(const QCommandLineParser &parser, QString *error)
{
    const QStringList texts = {print0Option, separatorOption, omitFirstOption};
    const QVector<QPair<QString, QStringList>> conflicts = {
        {jsonOption, QStringList(texts) << csvOption << joinedOption},
        {csvOption, QStringList(texts) << joinedOption},
        // Who removes all but the first of a joined group removes the last copy of a content.
        {joinedOption, {omitFirstOption, sortOption, summaryOption}},
    };
    for (const auto &conflict : conflicts) {
        for (const QString &other : conflict.second) {
            if (parser.isSet(conflict.first) && parser.isSet(other)) {
                *error = QStringLiteral("--%1 cannot be used with --%2").arg(conflict.first, other);
                return false;
            }
        }
    }
    return true;
}

// False for anything but one of the values; an option not given has the first one.
template<typename Value>
bool readChoice(const QCommandLineParser &parser,
                const QString &option,
                const QVector<QPair<QString, Value>> &choices,
                Value *value,
                QString *error)
{
    QStringList names;
    for (const auto &choice : choices) {
        if (!parser.isSet(option) || parser.value(option) == choice.first) {
            *value = choice.second;
            return true;
        }
        names.append(choice.first);
    }
    *error = QStringLiteral("--%1 takes %2, not \"%3\"")
                 .arg(option, names.join(QLatin1String(" or ")), parser.value(option));
    return false;
}

bool readOutput(const QCommandLineParser &parser, ScanArguments *arguments)
{
    using Order = ScanArguments::Order;
    arguments->format = parser.isSet(jsonOption) ? ScanArguments::Format::Json
        : parser.isSet(csvOption)                ? ScanArguments::Format::Csv
                                                 : ScanArguments::Format::Text;
    arguments->isJoined = parser.isSet(joinedOption);
    arguments->omitsFirst = parser.isSet(omitFirstOption);
    arguments->print0 = parser.isSet(print0Option);
    arguments->printsSummary = parser.isSet(summaryOption);
    arguments->isQuiet = parser.isSet(quietOption);
    arguments->printsMessages = !parser.isSet(noMessagesOption);
    arguments->printsEvents = parser.isSet(eventsOption);
    return checkForConflicts(parser, &arguments->error)
        && readChoice<bool>(parser,
                            separatorOption,
                            {{QStringLiteral("blank"), true}, {QStringLiteral("none"), false}},
                            &arguments->separatesGroups,
                            &arguments->error)
        && (!parser.isSet(sortOption)
            || readChoice<Order>(parser,
                                 sortOption,
                                 {{QStringLiteral("path"), Order::Path},
                                  {QStringLiteral("size"), Order::Size},
                                  {QStringLiteral("count"), Order::Count}},
                                 &arguments->order,
                                 &arguments->error));
}

bool readFolders(const QCommandLineParser &parser, ScanArguments *arguments)
{
    QStringList names = parser.positionalArguments();
    if (parser.isSet(filesFromOption)
        && !FolderArguments::readList(parser.value(filesFromOption), &names, &arguments->error)) {
        return false;
    }
    return FolderArguments::reduce(names,
                                   arguments->walkOptions,
                                   &arguments->folders,
                                   &arguments->error);
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
    readMasks(parser, &result.profile);
    if (readMode(parser, &result) && readNumbers(parser, &result)
        && readWalkOptions(parser, &result) && readOutput(parser, &result)
        && readFolders(parser, &result)) {
        result.action = Action::Scan;
        result.error.clear();
    }
    return result;
}
