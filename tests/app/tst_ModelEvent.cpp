// SPDX-License-Identifier: MIT
#include "app/ModelEvent.h"
#include "tests/support/TestCase.h"

#include <memory>

class tst_ModelEvent final : public TestCase
{
    Q_OBJECT

private slots:
    void typesAndDescriptions_data();
    void typesAndDescriptions();
    void payloads();
};

Q_DECLARE_METATYPE(std::shared_ptr<ModelEvent>)

void tst_ModelEvent::typesAndDescriptions_data()
{
    QTest::addColumn<std::shared_ptr<ModelEvent>>("event");
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("name");

    const auto row =
        [](const char *tag, const std::shared_ptr<ModelEvent> &event, int type, const char *name) {
            QTest::newRow(tag) << event << type << QString::fromLatin1(name);
        };
    row("files counted",
        std::make_shared<CountingFilesInFolderEvent>(1, QString()),
        0,
        "TypeCountingFilesInFolderEvent");
    row("duplicates counted",
        std::make_shared<CountingFindFilesDuplicatedEvent>(1, 2, 3),
        1,
        "TypeCountingFindFilesDuplicatedEvent");
    row("listing started",
        std::make_shared<FindAllFilesStartedEvent>(),
        2,
        "TypeFindAllFilesStartedEvent");
    row("listing finished",
        std::make_shared<FindAllFilesFinishedEvent>(),
        3,
        "TypeFindAllFilesFinishedEvent");
    row("grouping started",
        std::make_shared<FindDuplicatedFilesStartedEvent>(),
        4,
        "TypeFindDuplicatedFilesStartedEvent");
    row("file analysed",
        std::make_shared<AnalyzingCurrentDuplicatedFileEvent>(QString()),
        5,
        "TypeAnalyzingCurrentDuplicatedFileEvent");
    row("finished",
        std::make_shared<FindDuplicatedFilesFinishedEvent>(QList<QStringList>()),
        6,
        "TypeFindDuplicatedFilesFinishedEvent");
    row("stopped, under the name of finished",
        std::make_shared<FindDuplicatedFilesStoppedEvent>(),
        7,
        "TypeFindDuplicatedFilesFinishedEvent");
    row("update",
        std::make_shared<GetUpdateVersionEvent>(QString(), QString(), QString()),
        8,
        "TypeGetUpdateVersionEvent");
}

void tst_ModelEvent::typesAndDescriptions()
{
    // Each event has its fixed number, and a description without its payload.
    QFETCH(std::shared_ptr<ModelEvent>, event);
    QFETCH(int, type);
    QFETCH(QString, name);

    QCOMPARE(event->type, type);
    QCOMPARE(event->description(), QStringLiteral("Name of event: %1\r\nAddinfo: ").arg(name));
}

void tst_ModelEvent::payloads()
{
    // An event carries what its sender put in, unchanged.
    const CountingFilesInFolderEvent files(7, QStringLiteral("/a"));
    QCOMPARE(files.size, 7);
    QCOMPARE(files.folder, QStringLiteral("/a"));

    const CountingFindFilesDuplicatedEvent duplicates(1, 2, -3000000000LL);
    QCOMPARE(duplicates.currentCountFiles, 1);
    QCOMPARE(duplicates.countFoundedDuplicated, 2);
    QCOMPARE(duplicates.summFileSize, -3000000000LL);

    QCOMPARE(AnalyzingCurrentDuplicatedFileEvent(QStringLiteral("/f")).currentFile,
             QStringLiteral("/f"));

    const QList<QStringList> groups = {{QStringLiteral("/a"), QStringLiteral("/b")}};
    QCOMPARE(FindDuplicatedFilesFinishedEvent(groups).duplicatedFiles, groups);

    const GetUpdateVersionEvent update(QStringLiteral("1"),
                                       QStringLiteral("."),
                                       QStringLiteral("u"));
    QCOMPARE(update.version, QStringLiteral("1"));
    QCOMPARE(update.build, QStringLiteral("."));
    QCOMPARE(update.url, QStringLiteral("u"));
}

TWINSIFT_TEST_MAIN(tst_ModelEvent)
#include "tst_ModelEvent.moc"
