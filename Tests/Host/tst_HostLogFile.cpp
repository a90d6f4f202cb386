#include "Host/Cli/Console.hpp"
#include "Host/Cli/MessageLog.hpp"
#include "Tests/Host/HostProcess.hpp"
#include "Tests/Host/JsonReport.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

#include <thread>

namespace Varnholt::TestSupport {

/// The module's log in a file of the user's.
class HostLogFileTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { Game.reset(); }

    void EveryLineHasItsTimeAndItsCategory();
    void ASecondRunAppends();
    void TheLogIsShownOnlyToWhoAsks();
    void AFileThatCannotBeWrittenIsToldAndTheRunGoesOn();
    void StandardOutputStaysJsonWithoutTheFile();
    void AddressesAreWrittenAsPeopleKnowThem();
    void NamesMayChangeWhileTheLogIsWritten();

private:
    Outcome Locales(QStringList const& p_Options) const
    {
        return HostProcess(*Game, QStringList("locales") + p_Options).Finish();
    }
    QStringList Lines() const
    {
        return QString::fromUtf8(ReadFile(Game->Base + "host.log")).split('\n', Qt::SkipEmptyParts);
    }

    std::unique_ptr<HostGame> Game;
};

void HostLogFileTest::init()
{
    Game = std::make_unique<HostGame>();
    Game->AddFiles().Publish();
}

void HostLogFileTest::EveryLineHasItsTimeAndItsCategory()
{
    QCOMPARE(Locales({"--log-file", "host.log"}).Status, 0);
    QVERIFY(!Lines().isEmpty());
    QRegularExpression const form(
        "^\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3}Z \\[[^\\]]+\\] .");
    for (QString const& line : Lines())
        QVERIFY2(form.match(line).hasMatch(), qPrintable(line));
    QVERIFY(!Lines().filter("[varnholt.").isEmpty());
}

void HostLogFileTest::ASecondRunAppends()
{
    QVERIFY(WriteFile(Game->Base + "host.log", "the user's\n"));
    QCOMPARE(Locales({"--log-file", "host.log"}).Status, 0);
    int const first = Lines().size();
    QVERIFY(first > 1);
    QCOMPARE(Lines()[0], QString("the user's"));
    QStringList const before = Lines();
    QCOMPARE(Locales({"--log-file", "host.log"}).Status, 0);
    QVERIFY(Lines().size() > first);
    QCOMPARE(QStringList(Lines().mid(0, first)), before);
}

void HostLogFileTest::TheLogIsShownOnlyToWhoAsks()
{
    Outcome const plain = Locales({"--log-file", "host.log"});
    QVERIFY2(!plain.Err.contains("[varnholt."), qPrintable(plain.Err));
    QStringList const written = Lines().filter("[varnholt.");
    Outcome const verbose = Locales({"--log-file", "host.log", "--verbose"});
    for (QString const& line : written)
        QVERIFY2(verbose.Err.contains(line.section(' ', 1).section(' ', 0, 0)), qPrintable(line));
    QVERIFY(Lines().filter("[varnholt.").size() > written.size());
}

void HostLogFileTest::AFileThatCannotBeWrittenIsToldAndTheRunGoesOn()
{
    Outcome const outcome = Locales({"--log-file", "no such folder/host.log"});
    QVERIFY2(outcome.Err.contains("The log file " + Game->Base +
                                  "no such folder/host.log cannot be written ("),
             qPrintable(outcome.Err));
    QVERIFY(outcome.Out.contains("frFR"));
    QCOMPARE(outcome.Status, 0);
    QCOMPARE(Locales({"-q", "--log-file", "no such folder/host.log"}).Err, QString());
}

void HostLogFileTest::StandardOutputStaysJsonWithoutTheFile()
{
    Outcome const outcome = Locales({"--json", "--log-file", "no such folder/host.log"});
    QCOMPARE(JsonReport(outcome.Out).Foreign, QStringList());
    QCOMPARE(JsonReport(outcome.Out).Last()["type"].toString(), QString("result"));
    QVERIFY(outcome.Err.contains("The log file "));
}

void HostLogFileTest::AddressesAreWrittenAsPeopleKnowThem()
{
    QString const file = Game->Base + "host.log";
    QString const door = "http://127.0.0.1:4711/6f1c/";
    auto const names = std::make_shared<Host::AddressNames>();
    Host::Console console(Host::Color::Never, true);
    {
        Host::MessageLog const log(console, false, file, names);
        qWarning("%s", qPrintable("first " + door + "d/a"));
        names->Set({{door + "d/", "https://content.example/"}, {door + "m/", "mirror:/"}});
        qWarning("%s", qPrintable("from " + door + "d/pelmora_app/version.json, " + door +
                                  "m/a%20b and " + door + "m/"));
        qWarning().noquote() << QUrl(door + "d/x y");
        qWarning("nothing of the kind");
        names->Set({});
        qWarning("%s", qPrintable("last " + door + "d/a"));
    }
    QStringList said;
    for (QString const& line : Lines())
        said += line.section(' ', 2);
    QCOMPARE(said, (QStringList{"first " + door + "d/a",
                                "from https://content.example/pelmora_app/version.json, "
                                "mirror:/a%20b and mirror:/",
                                "QUrl(https://content.example/x y)", "nothing of the kind",
                                "last " + door + "d/a"}));
}

void HostLogFileTest::NamesMayChangeWhileTheLogIsWritten()
{
    constexpr int c_Turns = 2000;

    Host::AddressNames names;
    std::thread other([&] {
        for (int i = 0; i < c_Turns; ++i)
            names.Set({{"door", QString::number(i)}});
    });
    for (int i = 0; i < c_Turns; ++i) {
        QString const text = names.Replace("at door/");
        QVERIFY2(text == "at door/" || QRegularExpression("^at \\d+/$").match(text).hasMatch(),
                 qPrintable(text));
    }
    other.join();
    QCOMPARE(names.Replace("door"), QString::number(c_Turns - 1));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostLogFileTest)
#include "tst_HostLogFile.moc"
