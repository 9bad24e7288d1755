// SPDX-License-Identifier: MIT
#include "app/Controller.h"
#include "app/Model.h"
#include "engine/FileFinderEngine.h"
#include "tests/app/EventRecorder.h"
#include "tests/support/HttpServer.h"
#include "tests/support/TestCase.h"

#include <QElapsedTimer>
#include <QMetaMethod>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

class tst_Controller final : public TestCase
{
    Q_OBJECT

private slots:
    void slotsInDeclaredOrder();
    void relaysTheEngine();
    void signalsOfTheEngine_data();
    void signalsOfTheEngine();
    void asksForTheUpdateFile();
    void updateAnswers_data();
    void updateAnswers();
    void redirectIsNotFollowed();
    void tooLargeAnswerIsCutOff();
    void connectionThatEndsHalfWay();
    void unreachableServerIsSilent();
    void silentServerIsGivenUp();
    void severalChecksAtOnce();
    void repliesAreDeleted();

private:
    // Runs one check against the server and returns the events that came of it.
    static QStringList check(const HttpServer &server);
};

QStringList tst_Controller::check(const HttpServer &server)
{
    qRegisterMetaType<QNetworkReply *>(); // for the spy
    Model model(nullptr);
    const EventRecorder recorder(&model);
    Controller controller(&model, nullptr);
    QSignalSpy finished(controller.findChild<QNetworkAccessManager *>(),
                        SIGNAL(finished(QNetworkReply*)));
    controller.setUpdateFileUrl(server.url(QStringLiteral("/twinsift/update.dat")));
    controller.checkUpdate();
    if (finished.isEmpty() && !finished.wait(60000)) {
        return {QStringLiteral("no answer in time")};
    }
    return recorder.events;
}

void tst_Controller::slotsInDeclaredOrder()
{
    // The slots stand in the order in which the engine's and the network's signals name them.
    const QMetaObject &meta = Controller::staticMetaObject;
    QList<QByteArray> names;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        QCOMPARE(meta.method(i).methodType(), QMetaMethod::Slot);
        names.append(meta.method(i).methodSignature());
    }
    QCOMPARE(names,
             QList<QByteArray>({"onFindAllFilesStarted()",
                                "onFindAllFilesFinished()",
                                "onCountingFilesInFolderChanged(int,QString)",
                                "onFindDuplicatedFilesStarted()",
                                "onFindDuplicatedFilesFinished(QList<QStringList>)",
                                "onCountingFindFilesDuplicated(int,int,qlonglong)",
                                "addedDuplicatedPath(QString)",
                                "onReplyFinished(QNetworkReply*)"}));
}

void tst_Controller::relaysTheEngine()
{
    // Each slot delivers its event, with its arguments, before it returns.
    Model model(nullptr);
    const EventRecorder recorder(&model);
    Controller controller(&model, nullptr);
    controller.onFindAllFilesStarted();
    controller.onCountingFilesInFolderChanged(2, QStringLiteral("/a"));
    controller.onFindAllFilesFinished();
    controller.onFindDuplicatedFilesStarted();
    controller.onCountingFindFilesDuplicated(1, 2, 1LL << 40);
    controller.addedDuplicatedPath(QStringLiteral("/a/1"));
    controller.onFindDuplicatedFilesFinished({{QStringLiteral("/a/1"), QStringLiteral("/a/2")}});
    controller.onFindDuplicatedFilesFinished({});
    QCOMPARE(recorder.events,
             QStringList({QStringLiteral("2"),
                          QStringLiteral("0 2 /a"),
                          QStringLiteral("3"),
                          QStringLiteral("4"),
                          QStringLiteral("1 1 2 1099511627776"),
                          QStringLiteral("6 /a/1=/a/2"),
                          QStringLiteral("6 ")}));
}

void tst_Controller::signalsOfTheEngine_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QVariantList>("arguments");
    QTest::addColumn<QStringList>("events");
    using Name = QByteArray;
    const QList<QStringList> groups = {{QStringLiteral("/a/1"), QStringLiteral("/a/2")},
                                       {QStringLiteral("/b"), QStringLiteral("/c")}};
    QTest::newRow("2") << Name("findAllFilesStarted()") << QVariantList()
                       << QStringList(QStringLiteral("2"));
    QTest::newRow("0") << Name("countingFilesInFolder(int,QString)")
                       << QVariantList{7, QStringLiteral("/a")}
                       << QStringList(QStringLiteral("0 7 /a"));
    QTest::newRow("3") << Name("findAllFilesFinished()") << QVariantList()
                       << QStringList(QStringLiteral("3"));
    QTest::newRow("4") << Name("findDuplicatedFilesStarted()") << QVariantList()
                       << QStringList(QStringLiteral("4"));
    QTest::newRow("1") << Name("countingFindFilesDuplicated(int,int,qlonglong)")
                       << QVariantList{1, 2, qint64(3)} << QStringList(QStringLiteral("1 1 2 3"));
    QTest::newRow("6") << Name("findDuplicatedFilesFinished(QList<QStringList>)")
                       << QVariantList{QVariant::fromValue(groups)}
                       << QStringList(QStringLiteral("6 /a/1=/a/2;/b=/c"));
    QTest::newRow("none") << Name("addedDuplicatedPath(QString)")
                          << QVariantList{QStringLiteral("/a")} << QStringList();
}

void tst_Controller::signalsOfTheEngine()
{
    // Each signal of the engine becomes one event, of its own type and with its arguments in order.
    QFETCH(const QByteArray, name);
    QFETCH(const QVariantList, arguments);
    Model model(nullptr);
    const EventRecorder recorder(&model);
    Controller controller(&model, nullptr);
    FileFinderEngine engine(&model, &controller, nullptr);
    const QMetaMethod signal =
        engine.metaObject()->method(engine.metaObject()->indexOfSignal(name.constData()));
    QVERIFY(signal.isValid());
    QGenericArgument generic[3];
    for (int i = 0; i < arguments.size(); ++i) {
        generic[i] = QGenericArgument(arguments.at(i).typeName(), arguments.at(i).constData());
    }
    QVERIFY(signal.invoke(&engine, Qt::DirectConnection, generic[0], generic[1], generic[2]));
    QCoreApplication::processEvents();
    QTEST(recorder.events, "events");
}

void tst_Controller::asksForTheUpdateFile()
{
    // One plain request for the file's path goes out.
    HttpServer server;
    server.setAnswer("HTTP/1.1 200 OK", "");
    check(server);
    QCOMPARE(server.requests(), QList<QByteArray>({"GET /twinsift/update.dat HTTP/1.1"}));
}

void tst_Controller::updateAnswers_data()
{
    QTest::addColumn<QByteArray>("status");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QStringList>("events");

    const QByteArray ok = "HTTP/1.1 200 OK";
    const QStringList event = {QStringLiteral("8 1 . https://a.example/b c")};
    QTest::newRow("well formed") << ok
                                 << QByteArray(
                                        "version=1.2.4 Build 211118\nurl=https://a.example/b%20c\n")
                                 << event;
    QTest::newRow("further lines are ignored")
        << ok << QByteArray("version=1.2.4 Build 9\nx=https://a.example/b c\nversion=9\n") << event;
    QTest::newRow("error page with a good body")
        << QByteArray("HTTP/1.1 404 Not Found")
        << QByteArray("version=1.2.4 Build 9\nurl=https://a.example/b c") << event;
    QTest::newRow("no build") << ok << QByteArray("version=1.2.4\nurl=u\n") << QStringList();
    QTest::newRow("capital letter")
        << ok << QByteArray("Version=1.2.4 Build 9\nurl=u\n") << QStringList();
    QTest::newRow("empty") << ok << QByteArray() << QStringList();
    QTest::newRow("error without a body")
        << QByteArray("HTTP/1.1 500 Internal Server Error") << QByteArray() << QStringList();
}

void tst_Controller::updateAnswers()
{
    // A good answer becomes one event; a malformed or empty one stays silent.
    QFETCH(QByteArray, status);
    QFETCH(QByteArray, body);
    HttpServer server;
    server.setAnswer(status, body);
    QTEST(check(server), "events");
}

void tst_Controller::redirectIsNotFollowed()
{
    // An answer that points elsewhere ends the check: no second request goes out.
    HttpServer server;
    server.setAnswer("HTTP/1.1 302 Found\r\nLocation: /other", "");
    QCOMPARE(check(server), QStringList());
    QCOMPARE(server.requests().size(), 1);
}

void tst_Controller::tooLargeAnswerIsCutOff()
{
    // An answer beyond 64 KiB gives no event, though it begins well, and is not read to its end.
    HttpServer server;
    server.setAnswer("HTTP/1.1 200 OK",
                     "version=1.2.4 Build 9\nurl=u\n" + QByteArray(64 * 1024 * 1024, 'x'));
    QCOMPARE(check(server), QStringList());
    QVERIFY2(server.sentBytes() < qint64(48) * 1024 * 1024,
             qPrintable(QString::number(server.sentBytes())));

    // As much as is allowed is read.
    const QByteArray head = "version=1.2.4 Build 9\nurl=u\n";
    server.setAnswer("HTTP/1.1 200 OK", head + QByteArray(64 * 1024 - head.size(), 'x'));
    QCOMPARE(check(server), QStringList({QStringLiteral("8 1 . u")}));
    server.setAnswer("HTTP/1.1 200 OK", head + QByteArray(64 * 1024 - head.size() + 1, 'x'));
    QCOMPARE(check(server), QStringList());
}

void tst_Controller::connectionThatEndsHalfWay()
{
    // What has arrived decides: one line is too little, two good ones are an answer.
    HttpServer server;
    server.setCutAnswer("HTTP/1.1 200 OK", "version=1.2.4 Build 9\n", 6);
    QCOMPARE(check(server), QStringList());
    server.setCutAnswer("HTTP/1.1 200 OK", "version=1.2.4 Build 9\nurl=u\n", 6);
    QCOMPARE(check(server), QStringList({QStringLiteral("8 1 . u")}));
}

void tst_Controller::unreachableServerIsSilent()
{
    // Nobody answers at the address: no event.
    HttpServer server;
    server.close();
    QCOMPARE(check(server), QStringList());
}

void tst_Controller::silentServerIsGivenUp()
{
    // A server that takes the request and never answers, or has a header without an end that comes
    // byte by byte, is waited for no longer than 30 seconds.
    HttpServer server;
    server.setSilent();
    QTcpServer slowServer;
    QVERIFY(slowServer.listen(QHostAddress::LocalHost));
    bool isGivenUp = false;
    connect(&slowServer, &QTcpServer::newConnection, this, [&] {
        QTcpSocket *const socket = slowServer.nextPendingConnection();
        socket->write("HTTP/1.1 200 OK\r\nA: ");
        auto *const timer = new QTimer(socket);
        connect(timer, &QTimer::timeout, socket, [socket] { socket->write("b"); });
        connect(socket, &QTcpSocket::disconnected, this, [&] { isGivenUp = true; });
        timer->start(50);
    });
    Model slowModel(nullptr);
    const EventRecorder recorder(&slowModel);
    Controller slowController(&slowModel, nullptr);
    slowController.setUpdateFileUrl(
        QUrl(QStringLiteral("http://127.0.0.1:%1/").arg(slowServer.serverPort())));
    slowController.checkUpdate();
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(check(server), QStringList());
    QVERIFY2(timer.elapsed() > 25000, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(server.requests().size(), 1);
    QTRY_VERIFY(isGivenUp);
    QCOMPARE(recorder.events, QStringList());
}

void tst_Controller::severalChecksAtOnce()
{
    // Checks do not wait for each other, and each answer becomes an event of its own.
    HttpServer server;
    server.setAnswer("HTTP/1.1 200 OK", "version=1.2.4 Build 9\nurl=u\n");
    Model model(nullptr);
    const EventRecorder recorder(&model);
    Controller controller(&model, nullptr);
    controller.setUpdateFileUrl(server.url(QStringLiteral("/twinsift/update.dat")));
    controller.checkUpdate();
    controller.checkUpdate();
    controller.checkUpdate();
    QTRY_COMPARE_WITH_TIMEOUT(recorder.events.size(), 3, 30000);
}

void tst_Controller::repliesAreDeleted()
{
    // A reply does not outlive its check.
    HttpServer server;
    server.setAnswer("HTTP/1.1 200 OK", "version=1.2.4 Build 9\nurl=u\n");
    Model model(nullptr);
    Controller controller(&model, nullptr);
    controller.setUpdateFileUrl(server.url(QStringLiteral("/twinsift/update.dat")));
    controller.checkUpdate();
    QVERIFY(controller.findChild<QNetworkReply *>() != nullptr);
    QTRY_VERIFY_WITH_TIMEOUT(controller.findChild<QNetworkReply *>() == nullptr, 30000);
}

TWINSIFT_TEST_MAIN(tst_Controller)
#include "tst_Controller.moc"
