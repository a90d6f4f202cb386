#include "Tests/Host/HostProcess.hpp"
#include "Tests/Support/FileSizeLimit.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/OrdinaryUser.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
#include <QRegularExpression>
#include <QtTest>

#include <memory>
#include <vector>

namespace Varnholt::TestSupport {

/// What the program reads from its settings file and keeps there, and what it says when it cannot.
class HostKeepingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ReadingNeedsNoFolder_data();
    void ReadingNeedsNoFolder();
    void ReadingNeedsNoHome_data();
    void ReadingNeedsNoHome();
    void ReadingNeedsNoRightToWrite();
    void WhatCannotBeKeptIsNotSaidToBeDone_data();
    void WhatCannotBeKeptIsNotSaidToBeDone();
    void AFileThatMayNotBeWrittenIsNotReplaced();
    void AFullDiskIsNamed_data();
    void AFullDiskIsNamed();
    void ADamagedFileIsNamedAndStays_data();
    void ADamagedFileIsNamedAndStays();
    void WhatSeveralProgramsKeepAtOnceIsAllKept();
    void ALockOfAnEarlierKindIsNotWaitedFor();
};

namespace {

/// What is beside the settings file too.
QStringList Beside(HostGame const& p_Game)
{
    return QDir(QFileInfo(p_Game.SettingsFile).path())
        .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

/// How long a server takes is another matter each time.
QString WithoutTimes(QString p_Text)
{
    static QRegularExpression const s_Time(QStringLiteral("\\d+ ms"));
    return p_Text.replace(s_Time, QStringLiteral("ms"));
}

} // namespace

void HostKeepingTest::ReadingNeedsNoFolder_data()
{
    QTest::addColumn<QStringList>("command");
    for (char const* const command :
         {"status", "info", "locales", "mirrors", "locale", "config", "check", "verify"})
        QTest::newRow(command) << QStringList(command);
}

void HostKeepingTest::ReadingNeedsNoFolder()
{
    QFETCH(QStringList, command);
    HostGame game;
    game.AddFiles().Publish();
    Outcome const usual = HostProcess(game, command).Finish();
    QVERIFY(!QFileInfo::exists(QFileInfo(game.SettingsFile).path()));
    QVERIFY(WriteFile(game.Base + "file", "x"));
    game.SettingsFile = game.Base + "file/no/host.ini"; // root cannot make that either
    Outcome const outcome = HostProcess(game, command).Finish();
    QCOMPARE(outcome.Err, usual.Err);
    QCOMPARE(WithoutTimes(outcome.Out), WithoutTimes(usual.Out));
    QCOMPARE(outcome.Status, usual.Status);
}

void HostKeepingTest::ReadingNeedsNoHome_data()
{
    QTest::addColumn<QString>("home");
    QTest::newRow("absent") << "absent/home";
    QTest::newRow("read-only") << "read-only";
    QTest::newRow("a file") << "file";
}

void HostKeepingTest::ReadingNeedsNoHome()
{
    QFETCH(QString, home);
    VARNHOLT_AS_ORDINARY_USER();
    HostGame game;
    game.AddFiles().Publish();
    QVERIFY(WriteFile(game.Base + "file", "x"));
    QVERIFY(QDir().mkpath(game.Base + "read-only"));
    QVERIFY(SetMode(game.Base + "read-only", 0555));
    for (char const* const command : {"status", "info", "locales", "mirrors"}) {
        Outcome const outcome = HostProcess(game, {"--content-url", game.Server.BaseUrl()},
                                            {"-q", command}, {{"HOME", game.Base + home}})
                                    .Finish();
        QCOMPARE(outcome.Err, QString());
        QCOMPARE(outcome.Status, 0);
    }
    QVERIFY(!QFileInfo::exists(game.Base + "absent"));
}

void HostKeepingTest::ReadingNeedsNoRightToWrite()
{
    VARNHOLT_AS_ORDINARY_USER();
    HostGame game;
    game.AddFiles().Publish().PutInstalled();
    QByteArray const before = ReadFile(game.SettingsFile);
    QStringList const beside = Beside(game);
    QVERIFY(SetMode(QFileInfo(game.SettingsFile).path(), 0555));
    for (QStringList const& command :
         {QStringList("status"), QStringList("info"), QStringList("check"), QStringList("verify"),
          QStringList("mirrors"), QStringList("locales"), QStringList("locale"),
          QStringList{"check", "--quick"}}) {
        Outcome const outcome = HostProcess(game, QStringList("-q") + command).Finish();
        QCOMPARE(outcome.Err, QString());
        QCOMPARE(outcome.Status, 0);
    }
    QVERIFY(HostProcess(game, {"status"}).Finish().Out.contains(game.Folder));
    QCOMPARE(ReadFile(game.SettingsFile), before);
    QCOMPARE(Beside(game), beside);
    QVERIFY(SetMode(QFileInfo(game.SettingsFile).path(), 0755));
}

void HostKeepingTest::WhatCannotBeKeptIsNotSaidToBeDone_data()
{
    QTest::addColumn<QStringList>("command");
    for (QStringList const& command :
         {QStringList{"locale", "frFR"}, QStringList("uninstall"),
          QStringList{"uninstall", "--delete-files", "--yes"}, QStringList("update"),
          QStringList("repair"), QStringList{"config", "limit-rate", "1M"}})
        QTest::newRow(qPrintable(command.join(' '))) << command;
}

void HostKeepingTest::WhatCannotBeKeptIsNotSaidToBeDone()
{
    QFETCH(QStringList, command);
    VARNHOLT_AS_ORDINARY_USER();
    HostGame game;
    game.AddFiles().Publish().PutInstalled();
    QByteArray const before = ReadFile(game.SettingsFile);
    QVERIFY(SetMode(QFileInfo(game.SettingsFile).path(), 0555));
    Outcome const outcome = HostProcess(game, QStringList("-q") + command).Finish();
    QVERIFY(SetMode(QFileInfo(game.SettingsFile).path(), 0755));
    QCOMPARE(outcome.Err, QString("varnholt-host: the settings file %1 cannot be written "
                                  "(Permission denied); change its permissions or choose another "
                                  "file.\n")
                              .arg(game.SettingsFile));
    QCOMPARE(outcome.Out, QString());
    QCOMPARE(outcome.Status, 7);
    QCOMPARE(ReadFile(game.SettingsFile), before);
    QCOMPARE(game.Wrong(), QStringList());
}

void HostKeepingTest::AFileThatMayNotBeWrittenIsNotReplaced()
{
    VARNHOLT_AS_ORDINARY_USER();
    HostGame game;
    game.AddFiles().Publish().PutInstalled();
    QByteArray const before = ReadFile(game.SettingsFile);
    QVERIFY(SetMode(game.SettingsFile, 0444));
    for (QStringList const& command :
         {QStringList{"locale", "frFR"}, QStringList("uninstall"), QStringList("update"),
          QStringList{"config", "limit-rate", "1M"}}) {
        Outcome const outcome = HostProcess(game, QStringList("-q") + command).Finish();
        QVERIFY2(outcome.Err.contains("cannot be written (Permission denied)"),
                 qPrintable(outcome.Err));
        QCOMPARE(outcome.Status, 7);
    }
    QCOMPARE(HostProcess(game, {"-q", "verify"}).Finish().Status, 0);
    QCOMPARE(ReadFile(game.SettingsFile), before);
    QCOMPARE(ModeOf(game.SettingsFile), 0444);
}

void HostKeepingTest::AFullDiskIsNamed_data()
{
    QTest::addColumn<QStringList>("command");
    for (QStringList const& command : {QStringList{"locale", "frFR"}, QStringList("uninstall"),
                                       QStringList{"config", "limit-rate", "1M"}})
        QTest::newRow(qPrintable(command.join(' '))) << command;
}

void HostKeepingTest::AFullDiskIsNamed()
{
    constexpr rlim_t c_Room = 4096;

    QFETCH(QStringList, command);
    HostGame game;
    game.AddFiles().Publish().PutInstalled();
    game.SetSetting("other", QString(c_Room, 'x'));
    QByteArray const before = ReadFile(game.SettingsFile);
    FileSizeLimit const limit(c_Room);
    Outcome const outcome = HostProcess(game, QStringList("-q") + command).Finish();
    QCOMPARE(outcome.Err,
             QString("varnholt-host: the volume of %1 is too full (File too large); free some "
                     "space, then try again; what has arrived is kept.\n")
                 .arg(game.SettingsFile));
    QCOMPARE(outcome.Out, QString());
    QCOMPARE(outcome.Status, 6);
    QCOMPARE(ReadFile(game.SettingsFile), before);
}

void HostKeepingTest::ADamagedFileIsNamedAndStays_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("cause");
    QTest::newRow("cut short") << QByteArray("[General]\npelmora_app.Instal")
                               << "line 2 is no setting";
    QTest::newRow("text") << QByteArray("Dear diary\n") << "line 1 is no setting";
    QTest::newRow("zeros") << QByteArray(100, '\0') << "line 1 is no setting";
    QTest::newRow("zeros behind") << QByteArray("[General]\na=b") + QByteArray(9, '\0')
                                  << "line 2 is no setting";
    QTest::newRow("open group") << QByteArray("a=b\n\n[Gener") << "line 3 is no setting";
}

void HostKeepingTest::ADamagedFileIsNamedAndStays()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, cause);
    HostGame game;
    game.AddFiles().Publish().PutInstalled();
    QVERIFY(WriteFile(game.SettingsFile, content));
    QStringList const beside = Beside(game);
    for (QStringList const& command :
         {QStringList("status"), QStringList("update"), QStringList{"locale", "frFR"},
          QStringList("config"), QStringList{"config", "limit-rate", "1M"},
          QStringList("uninstall"), QStringList{"install", game.Folder}}) {
        Outcome const outcome = HostProcess(game, command).Finish();
        QCOMPARE(outcome.Err, QString("varnholt-host: the settings file %1 cannot be read (%2); "
                                      "correct it or its permissions, or choose another file.\n")
                                  .arg(game.SettingsFile, cause));
        QCOMPARE(outcome.Out, QString());
        QCOMPARE(outcome.Status, 7);
    }
    QCOMPARE(ReadFile(game.SettingsFile), content);
    QCOMPARE(Beside(game), beside);
}

void HostKeepingTest::WhatSeveralProgramsKeepAtOnceIsAllKept()
{
    constexpr int c_Times = 8;

    HostGame game;
    QStringList const keys{"connections", "limit-rate", "retry-for", "connect-timeout"};
    for (int i = 1; i <= c_Times; ++i) {
        std::vector<std::unique_ptr<HostProcess>> programs;
        for (QString const& key : keys)
            programs.push_back(std::make_unique<HostProcess>(
                game, QStringList{"config", key, QString::number(i)}));
        for (auto const& program : programs)
            QCOMPARE(program->Finish().Err, QString());
        for (QString const& key : keys)
            QCOMPARE(game.Setting("options/" + key).toInt(), i);
    }
}

void HostKeepingTest::ALockOfAnEarlierKindIsNotWaitedFor()
{
    HostGame game;
    QByteArray const content = QByteArray::number(QCoreApplication::applicationPid()) +
                               "\ntst_host_keeping\n" + QSysInfo::machineHostName().toUtf8() + '\n';
    QVERIFY(WriteFile(game.SettingsFile + ".lock", content));
    Outcome const outcome = HostProcess(game, {"config", "limit-rate", "1M"}).Finish();
    QCOMPARE(outcome.Err, QString());
    QCOMPARE(outcome.Status, 0);
    QCOMPARE(game.Setting("options/limit-rate").toString(), QString("1M"));
    QCOMPARE(ReadFile(game.SettingsFile + ".lock"), content);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostKeepingTest)
#include "tst_HostKeeping.moc"
