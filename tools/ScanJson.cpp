// SPDX-License-Identifier: MIT
#include "tools/ScanJson.h"

#include "app/Product.h"
#include "engine/Utf8.h"
#include "tools/ScanArguments.h"
#include "tools/ScanOutput.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <limits>

namespace
{
// Written by hand, because a document of a million files need not be in memory.
class Document final
{
public:
    explicit Document(ScanOutput *destination)
        : output(destination)
    {
        output->write("{\n");
    }

    void add(const char *name, const QJsonValue &value)
    {
        start(name);
        output->write(text(value));
    }

    template<typename List, typename ToValue>
    void addLines(const char *name, const List &list, const ToValue &toValue)
    {
        start(name);
        QByteArray before = "[\n";
        for (const auto &each : list) {
            output->write(before + text(toValue(each)));
            before = ",\n";
        }
        output->write(list.isEmpty() ? "[]" : "\n]");
    }

    void end() { output->write("\n}\n"); }

private:
    void start(const char *name)
    {
        output->write(isEmpty ? QByteArray() : QByteArray(",\n"));
        output->write('"' + QByteArray(name) + "\": ");
        isEmpty = false;
    }

    // The library writes no bare values.
    static QByteArray text(const QJsonValue &value)
    {
        const QByteArray list = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
        return list.mid(1, list.size() - 2);
    }

    ScanOutput *output;
    bool isEmpty = true;
};

QJsonArray paths(const QStringList &list)
{
    QJsonArray array;
    for (const QString &each : list) {
        array.append(ScanJson::path(QFile::encodeName(each)));
    }
    return array;
}

// Null for a limit that is not set.
QJsonValue limit(bool isSet, qint64 value)
{
    return isSet ? QJsonValue(value) : QJsonValue();
}

QString mode(const ScanProfile &profile)
{
    return !profile.advancedMatch ? QStringLiteral("bytes")
        : profile.crcHash         ? QStringLiteral("crc")
        : profile.md5Hash         ? QStringLiteral("md5")
                                  : QStringLiteral("sha1");
}

QString orderName(ScanArguments::Order order)
{
    switch (order) {
    case ScanArguments::Order::Path:
        return QStringLiteral("path");
    case ScanArguments::Order::Size:
        return QStringLiteral("size");
    case ScanArguments::Order::Count:
        return QStringLiteral("count");
    case ScanArguments::Order::Found:
        break;
    }
    return QStringLiteral("found");
}

QJsonObject options(const ScanArguments &arguments)
{
    const ScanProfile &profile = arguments.profile;
    const WalkOptions &walk = arguments.walkOptions;
    return {
        {QStringLiteral("folders"), paths(arguments.folders)},
        {QStringLiteral("compare"), mode(profile)},
        {QStringLiteral("sameName"), profile.sameFileName},
        {QStringLiteral("sameExtension"), profile.sameFileExtension},
        {QStringLiteral("sameDate"), profile.sameDateOfCreation},
        {QStringLiteral("include"), QJsonArray::fromStringList(profile.includeMasks)},
        {QStringLiteral("exclude"), QJsonArray::fromStringList(profile.excludeMasks)},
        {QStringLiteral("minKilobytes"), limit(profile.minSizeEnabled, profile.minSizeInKbytes)},
        {QStringLiteral("maxKilobytes"), limit(profile.maxSizeEnabled, profile.maxSizeInKbytes)},
        {QStringLiteral("minBytes"), limit(walk.minBytes > 0, walk.minBytes)},
        {QStringLiteral("maxBytes"),
         limit(walk.maxBytes < std::numeric_limits<qint64>::max(), walk.maxBytes)},
        {QStringLiteral("hidden"), walk.takesHidden},
        {QStringLiteral("followLinks"), walk.followsLinks},
        {QStringLiteral("oneFileSystem"), walk.staysOnFileSystem},
        {QStringLiteral("sort"), orderName(arguments.order)},
        {QStringLiteral("stopAfter"), limit(arguments.stopAfter > 0, arguments.stopAfter)},
    };
}

QJsonObject counters(const ScanReport &report)
{
    return {
        {QStringLiteral("files"), report.filesFound},
        {QStringLiteral("groups"), report.groups.size()},
        {QStringLiteral("redundantFiles"), report.redundantFiles()},
        {QStringLiteral("freeableBytes"), report.freeableBytes()},
        {QStringLiteral("skipped"), report.skipped.size()},
    };
}

QJsonValue groupObject(const ReportedGroup &group)
{
    QJsonObject object = {
        {QStringLiteral("size"), group.size},
        {QStringLiteral("paths"), paths(group.paths)},
    };
    if (!group.checksum.isEmpty()) {
        object.insert(QStringLiteral("checksum"), QString::fromLatin1(group.checksum));
    }
    return object;
}

QJsonValue skippedObject(const SkippedPath &skipped)
{
    return QJsonObject{{QStringLiteral("path"), ScanJson::path(skipped.path)},
                       {QStringLiteral("reason"), skipped.reason}};
}
} // namespace

QJsonValue ScanJson::path(const QByteArray &bytes)
{
    if (Utf8::isValid(bytes)) {
        return QString::fromUtf8(bytes);
    }
    return QJsonObject{
        {QStringLiteral("percentEncoded"), QString::fromLatin1(bytes.toPercentEncoding("/"))}};
}

void ScanJson::write(const QVector<ReportedGroup> &groups,
                     const ScanReport &report,
                     const ScanArguments &arguments,
                     ScanOutput *output)
{
    Document document(output);
    document.add("format", 1);
    document.add("program", QStringLiteral("twinsift-scan"));
    document.add("version", QString::fromLatin1(Product::version));
    document.add("options", options(arguments));
    document.add("stopped", report.wasStopped);
    document.add("counters", counters(report));
    document.addLines("groups", groups, groupObject);
    document.addLines("skipped", report.skipped, skippedObject);
    document.end();
}
