#include "Host/Core/Network/FetchFailure.hpp"
#include "Host/Core/Network/NetworkDoor.hpp"
#include "Tests/Host/PlayedGame.hpp"
#include "Tests/Host/SessionGame.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/ScopedVariable.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QElapsedTimer>
#include <QNetworkAccessManager>
#include <QNetworkProxyFactory>
#include <QNetworkReply>
#include <QtTest>

namespace Varnholt::TestSupport {

using Host::NetworkDoor;

namespace {

constexpr char c_Variable[] = "VARNHOLT_CONTENT_BASE_URL";

Host::HostOptions OptionsFor(QString const& p_Server)
{
    Host::HostOptions options;
    options.ContentUrl = p_Server;
    return options;
}

} // namespace

/// The door to the network, as a process with a session has it.
class HostDoorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void EachProblemIsToldAsItsKind_data();
    void EachProblemIsToldAsItsKind();
    void EachCauseIsToldInWords();
    void APathIsWhatQtAsksFor_data();
    void APathIsWhatQtAsksFor();
    void TheEnvironmentNamesTheDoorWhileItLives_data();
    void TheEnvironmentNamesTheDoorWhileItLives();
    void TheModuleUsesNoProxyForTheDoor();
    void TheServerOfTheEnvironmentIsTheOneBehindTheDoor();
    void SessionsOneAfterTheOtherHaveServersOfTheirOwn();
    void TheProgramWorksWhereAProxyIsSet();
    void FilesComeAheadOfTheModule();
    void AFileOfTheDefaultServerIsAskedOfThatOnly();
    void AFileThatWasWrongComesFromAnotherServer();
    void ALimitOfTheRateHoldsFromThenOn();
    void TheGameSeesNoDoor();
    void TheLogNamesServersAndNotTheDoor();
};

void HostDoorTest::EachProblemIsToldAsItsKind_data()
{
    using Type = Gateway::FetchProblem::Type;

    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("identifier");
    auto const row = [](char const* p_Name, Type p_Type, char const* p_Identifier) {
        QTest::newRow(p_Name) << static_cast<int>(p_Type) << p_Identifier;
    };
    row("unreachable", Type::Unreachable, "server-unreachable");
    row("untrusted", Type::Untrusted, "server-untrusted");
    row("dropped", Type::Dropped, "server-unreachable");
    row("silent", Type::Silent, "server-silent");
    row("refused", Type::Refused, "server-refusal");
    row("unusable", Type::Unusable, "content-invalid");
}

void HostDoorTest::EachProblemIsToldAsItsKind()
{
    QFETCH(int, type);
    Host::Failure const failure = Host::ExplainFetch(
        {static_cast<Gateway::FetchProblem::Type>(type), "http://a.example/a%20b",
         Gateway::FetchProblem::Cause::Told, 0, "why"});
    QTEST(failure.Identifier(), "identifier");
    QVERIFY2(failure.Sentence().contains("http://a.example/a b ") &&
                 failure.Sentence().contains("(why)"),
             qPrintable(failure.Sentence()));
}

void HostDoorTest::EachCauseIsToldInWords()
{
    using Gateway::FetchProblem;
    using Cause = FetchProblem::Cause;
    using Type = FetchProblem::Type;

    QStringList told;
    for (int cause = 1; cause <= static_cast<int>(Cause::NoHostList); ++cause)
        told += Host::CauseText({Type::Unusable, {}, static_cast<Cause>(cause)});
    QCOMPARE(told.removeDuplicates(), 0);
    QVERIFY(!told.contains(QString()));
    QCOMPARE(Host::CauseText({Type::Refused, {}, Cause::Status, 503, "503"}),
             QString("HTTP status 503"));
    QCOMPARE(Host::CauseText({Type::Unreachable, {}, Cause::ConnectionRefused, 0, {}, "a:1"}),
             QString("redirected to a:1: connection refused"));
    QCOMPARE(Host::CauseText({Type::ProxyUnreachable, {}, Cause::Told, 0, "why", "p:1"}),
             QString("the proxy p:1 cannot be reached: why"));
}

void HostDoorTest::APathIsWhatQtAsksFor_data()
{
    QTest::addColumn<QString>("location");
    for (char const* const location :
         {"files/plain", "files/with blank", "files/per%cent", "files/per%20cent", "files/que?ry=1",
          "files/sha#rp", "files/\xc3\xa4\xc3\xb6/\xe2\x82\xac", "files/plus+and&=;:@",
          "files/\"quotes\"<>{}|^`", "files/[brackets]", "files/back\\slash", "files//two",
          "files/./dot"})
        QTest::newRow(location) << QString::fromUtf8(location);
}

void HostDoorTest::APathIsWhatQtAsksFor()
{
    QFETCH(QString, location);
    ScriptedServer server;
    QObject owner;
    NetworkDoor door(OptionsFor(server.BaseUrl()), owner);
    door.Serve("app");
    QNetworkAccessManager manager;
    QString const asked = server.BaseUrl() + "app/" + location;
    QScopedPointer<QNetworkReply> const reply(
        manager.get(QNetworkRequest(QUrl(asked, QUrl::TolerantMode))));
    QVERIFY(QTest::qWaitFor([&] { return reply->isFinished(); }));
    QCOMPARE(server.Requests().size(), std::size_t(1));
    QByteArray const target = server.Requests()[0].Target;
    QCOMPARE('/' + QByteArray::fromStdString(door.PathOf(location)), target);
    for (char const* const below : {"m/", "d/"})
        QCOMPARE(door.PathIn(QString::fromStdString(door->BaseUrl()) + below + "app/" + location),
                 door.PathOf(location));
}

void HostDoorTest::TheEnvironmentNamesTheDoorWhileItLives_data()
{
    QTest::addColumn<bool>("wasSet");
    QTest::newRow("set before") << true;
    QTest::newRow("not set before") << false;
}

void HostDoorTest::TheEnvironmentNamesTheDoorWhileItLives()
{
    QFETCH(bool, wasSet);
    ScopedVariable const before(c_Variable, "http://before.example/");
    if (!wasSet)
        qunsetenv(c_Variable);
    {
        QObject owner;
        NetworkDoor door(OptionsFor("http://content.example/"), owner);
        QVERIFY(door.IsOpen());
        QByteArray const address = QByteArray::fromStdString(door->BaseUrl()) + "d/";
        QCOMPARE(qgetenv(c_Variable), address);
        {
            NetworkDoor::Outside const outside(door);
            QCOMPARE(qEnvironmentVariableIsSet(c_Variable), wasSet);
        }
        QCOMPARE(qgetenv(c_Variable), address);
    }
    QCOMPARE(qEnvironmentVariableIsSet(c_Variable), wasSet);
    QCOMPARE(qgetenv(c_Variable), QByteArray(wasSet ? "http://before.example/" : ""));
}

void HostDoorTest::TheModuleUsesNoProxyForTheDoor()
{
    ScriptedServer proxy;
    QUrl const address(proxy.BaseUrl());
    SessionGame game;
    game.AddFiles().Publish();
    QNetworkProxy::setApplicationProxy(
        {QNetworkProxy::HttpProxy, address.host(), static_cast<quint16>(address.port())});
    bool const isOpen = game.Open();
    QString const end = isOpen ? game.Install() : QString();
    QNetworkProxyFactory::setUseSystemConfiguration(true);
    QCOMPARE(end, QString("done"));
    QCOMPARE(proxy.Requests().size(), std::size_t(0));
}

void HostDoorTest::TheServerOfTheEnvironmentIsTheOneBehindTheDoor()
{
    SessionGame game;
    game.AddFiles().Publish();
    game.Server.BecomeDefaultContentServer();
    QByteArray const before = qgetenv(c_Variable);
    game.Options.ContentUrl.clear();
    QVERIFY(game.Open());
    QVERIFY(qgetenv(c_Variable) != before);
    QCOMPARE(game.Install(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    game.Close();
    QCOMPARE(qgetenv(c_Variable), before);
}

void HostDoorTest::SessionsOneAfterTheOtherHaveServersOfTheirOwn()
{
    SessionGame game;
    game.AddFiles().Publish();
    QVERIFY(game.Open());
    QCOMPARE(game.Install(), QString("done"));

    ScriptedServer other;
    game.Content.Build = "build_2";
    game.Content.Add({"new.txt", "new"});
    game.Content.Publish(other);
    std::size_t const asked = game.Server.Requests().size();
    game.Options.ContentUrl = other.BaseUrl();
    QVERIFY(game.Open());
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(game.Status().Build, QString("build_2"));
    QCOMPARE(game.Server.Requests().size(), asked);
}

void HostDoorTest::TheProgramWorksWhereAProxyIsSet()
{
    ScriptedServer proxy;
    HostGame game;
    game.AddFiles().Publish();
    Outcome const outcome =
        HostProcess(game, {"-q", "install", game.Folder},
                    {{"http_proxy", proxy.BaseUrl()}, {"no_proxy", "127.0.0.1"}})
            .Finish();
    QCOMPARE(outcome.Err, QString());
    QCOMPARE(outcome.Status, 0);
    QCOMPARE(proxy.Requests().size(), std::size_t(0));
}

void HostDoorTest::FilesComeAheadOfTheModule()
{
    SessionGame game;
    game.AddFiles().Publish();
    QString const base = game.Content.ServerPath("Data/base.MPQ");
    QString const last = game.Content.ServerPath("readme.txt");
    game.Server.Script("GET " + base).Then(Answer::SilentAfter(100));
    QVERIFY(game.Open());
    game.Start(RequestType::Install, game.Folder);
    QVERIFY(game.WaitForPart("Data/base.MPQ", 100));
    QVERIFY(game.WaitUntil([&] { return game.Server.BodyBytes(last) > 0; }));
    QVERIFY(!game.Has("readme.txt") && !game.Has("readme.txt.part"));
    game.Server.OpenGate(base);
    QCOMPARE(game.End(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    for (SampleFile const& file : game.Content.Files)
        if (file.Locale != "frFR") // none of it twice
            QCOMPARE(game.Server.BodyBytes(game.Content.ServerPath(file.Path)),
                     qint64(file.Bytes.size()));
}

void HostDoorTest::AFileOfTheDefaultServerIsAskedOfThatOnly()
{
    constexpr qint32 c_DefaultServerOnly = 0x40;

    SessionGame game;
    ScriptedServer mirror;
    game.AddFiles();
    game.Content.Add({"own.txt", "own", c_DefaultServerOnly});
    game.Content.Publish(game.Server, {&mirror});
    QVERIFY(game.Open());
    QCOMPARE(game.Install(), QString("done"));
    QVERIFY(QFile::remove(game.Path("own.txt")));
    QCOMPARE(game.Run(RequestType::Check), QString("update-available"));
    QCOMPARE(game.Result().Findings.at(0).Bytes, qint64(3));
    QCOMPARE(game.Run(RequestType::Update), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(mirror.Count(game.Content.ServerPath("own.txt")), 0);
    QVERIFY(mirror.Count(game.Content.ServerPath("readme.txt")) > 0);
}

void HostDoorTest::AFileThatWasWrongComesFromAnotherServer()
{
    SessionGame game;
    ScriptedServer mirror;
    game.Content.Add({"file", QByteArray(5000, 'x')});
    game.Content.Publish(game.Server, {&mirror});
    mirror.Serve(game.Content.ServerPath("file"), QByteArray(5000, 'o'));
    QVERIFY(game.Open());
    QCOMPARE(game.Install(), QString("done"));
    QCOMPARE(game.Wrong(), QStringList());
    QCOMPARE(mirror.BodyBytes(game.Content.ServerPath("file")), qint64(5000)); // once
}

void HostDoorTest::ALimitOfTheRateHoldsFromThenOn()
{
    constexpr int c_Bytes = 300'000;
    constexpr int c_PerSecond = 100'000;
    constexpr qint64 c_LeastMilliseconds = 2'000;

    SessionGame game;
    game.Content.Add({"file", SampleContent::Bytes(c_Bytes, 1)});
    game.Publish();
    QVERIFY(game.Open());
    game.Session().SetRateLimit(c_PerSecond);
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(game.Install(), QString("done"));
    QVERIFY2(clock.elapsed() >= c_LeastMilliseconds, qPrintable(QString::number(clock.elapsed())));
    QCOMPARE(game.Wrong(), QStringList());
}

void HostDoorTest::TheGameSeesNoDoor()
{
    PlayedGame const game;
    QCOMPARE(game.Play().Status, 0);
    QVERIFY(game.WaitForStarts(1));
    QVERIFY(game.Environment().contains("HOME="));
    QVERIFY2(!game.Environment().contains(c_Variable), qPrintable(game.Environment()));
}

void HostDoorTest::TheLogNamesServersAndNotTheDoor()
{
    HostGame game;
    game.AddFiles().Publish();
    QString const log = game.Base + "log.txt";
    QCOMPARE(HostProcess(game, {"--log-file", log, "-q", "install", game.Folder}).Finish().Status,
             0);
    QString const text = QString::fromUtf8(ReadFile(log)).remove(game.Server.Host());
    QVERIFY2(text.contains("mirrors/pelmora_app/builds/build_1/"), qPrintable(text));
    QVERIFY2(!text.contains("127.0.0.1"), qPrintable(text));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostDoorTest)
#include "tst_HostDoor.moc"
