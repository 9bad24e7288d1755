// SPDX-License-Identifier: MIT
#include "app/UpdateAnswer.h"
#include "tests/support/TestCase.h"
#include "tests/support/Toolkit.h"

class tst_UpdateAnswer final : public TestCase
{
    Q_OBJECT

private slots:
    void goodAnswers_data();
    void goodAnswers();
    void addressGoesThroughTheLocalEncoding();
    void malformedAnswers_data();
    void malformedAnswers();
};

void tst_UpdateAnswer::goodAnswers_data()
{
    QTest::addColumn<QList<QByteArray>>("lines");
    QTest::addColumn<QString>("version");
    QTest::addColumn<QString>("build");
    QTest::addColumn<QString>("url");

    const auto row = [](const char *tag,
                        const QList<QByteArray> &lines,
                        const char *version,
                        const char *build,
                        const char *url) {
        QTest::newRow(tag) << lines << QString::fromLatin1(version) << QString::fromLatin1(build)
                           << QString::fromLatin1(url);
    };
    row("single characters", {"version=1.2.4 Build 211118\n", "url=u\n"}, "1", ".", "u");
    row("any key that holds the word", {"the version is=98 Build 7\n", "=u"}, "9", "8", "u");
    row("the word after the equals sign", {"a=7version Build \n", "b=u"}, "7", "v", "u");
    row("only the separator", {"version= Build \n", "url=u\n"}, " ", "B", "u");
    row("second part of several", {"version=1.2 Build 3=4\n", "url=a=b\n"}, "1", ".", "a");
    row("no address", {"version=1.2 Build 3\n", "url="}, "1", ".", "");
    row("encoded", {"version=1.2 Build 3\n", "url=http%3A%2F%2Fa%0Ab\n"}, "1", ".", "http://ab");
    row("carriage return stays", {"version=1.2 Build 3\r\n", "url=u\r\n"}, "1", ".", "u\r");
    QTest::newRow("no ASCII") << QList<QByteArray>(
        {"version=\xc3\xa4\xe2\x82\xac Build 3\n", "url=\xc3\xb6/%C3%BC\n"})
                              << QStringLiteral("\u00e4") << QStringLiteral("\u20ac")
                              << QStringLiteral("\u00f6/\u00fc");
    row("ends at a zero byte",
        {QByteArray("version=1.2 Build 3\0=", 21), QByteArray("url=u\0v", 7)},
        "1",
        ".",
        "u");
}

void tst_UpdateAnswer::goodAnswers()
{
    // Version and build are the first two characters of the value, the address is decoded.
    QFETCH(QList<QByteArray>, lines);
    const auto answer = UpdateAnswer::fromLines(lines);
    QVERIFY(answer.has_value());
    QTEST(answer->version, "version");
    QTEST(answer->build, "build");
    QTEST(answer->url, "url");
}

void tst_UpdateAnswer::addressGoesThroughTheLocalEncoding()
{
    // The answer is UTF-8. Its address is made local before it is decoded, again as UTF-8: where the
    // two differ a letter is lost, while one that comes in percents is not.
    const auto answer =
        UpdateAnswer::fromLines({"version=\xc3\xa4. Build 3\n", "url=\xc3\xb6/%C3%BC\n"});
    QVERIFY(answer.has_value());
    QCOMPARE(answer->version, QStringLiteral("\u00e4"));
    QCOMPARE(answer->url,
             Toolkit::isInLatin1() ? QStringLiteral("\ufffd/\u00fc")
                                   : QStringLiteral("\u00f6/\u00fc"));
}

void tst_UpdateAnswer::malformedAnswers_data()
{
    QTest::addColumn<QList<QByteArray>>("lines");

    QTest::newRow("nothing") << QList<QByteArray>();
    QTest::newRow("one line") << QList<QByteArray>({"version=1.2.4 Build 9\n"});
    QTest::newRow("no word version") << QList<QByteArray>({"Version=1.2 Build 9\n", "url=u\n"});
    QTest::newRow("no build") << QList<QByteArray>({"version=1.2.4\n", "url=u\n"});
    QTest::newRow("build in small letters") << QList<QByteArray>({"version=1 build 2\n", "u=u\n"});
    QTest::newRow("build after a second =") << QList<QByteArray>({"version=1= Build 2\n", "u=u\n"});
    QTest::newRow("no = in line 1") << QList<QByteArray>({"version 1.2 Build 9\n", "url=u\n"});
    QTest::newRow("no = in line 2") << QList<QByteArray>({"version=1.2 Build 9\n", "url\n"});
    QTest::newRow("zero byte before the value")
        << QList<QByteArray>({QByteArray("version\0=1.2 Build 9\n", 21), "url=u\n"});
}

void tst_UpdateAnswer::malformedAnswers()
{
    // Whatever is malformed gives no answer.
    QFETCH(QList<QByteArray>, lines);
    QVERIFY(!UpdateAnswer::fromLines(lines).has_value());
}

TWINSIFT_TEST_MAIN(tst_UpdateAnswer)
#include "tst_UpdateAnswer.moc"
