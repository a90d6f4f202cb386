#include "Programs/Printable.hpp"
#include "Tests/Host/HostProcess.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestHost.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

#include <unistd.h>

namespace Varnholt::TestSupport {

/// Standard streams of both programs, and what is told on them.
class HostStreamsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { Game.reset(); }

    void LostResultsAreAFailure_data();
    void LostResultsAreAFailure();
    void AFailureKeepsItsOwnStatus();
    void WithoutAnyStreamTheWorkIsDone();
    void WhatSteersATerminalIsEscaped_data();
    void WhatSteersATerminalIsEscaped();
    void JsonKeepsItsMeaning();
    void NamesOfFilesAreShownEscaped();

private:
    /// Runs a program with redirections of bash; fails the whole test when it does not end.
    Outcome Run(QString const& p_Redirections, QStringList const& p_CommandLine) const;
    QStringList Host(QStringList const& p_Arguments) const
    {
        return QStringList(HostProcess::Program()) + HostProcess::Options(*Game) + p_Arguments;
    }

    std::unique_ptr<HostGame> Game;
};

void HostStreamsTest::init()
{
    Game = std::make_unique<HostGame>();
    Game->AddFiles().Publish();
}

Outcome HostStreamsTest::Run(QString const& p_Redirections, QStringList const& p_CommandLine) const
{
    QProcess process;
    process.setProcessEnvironment(HostProcess::Environment(*Game));
    process.start("bash",
                  QStringList{"-c", "exec \"$0\" \"$@\" " + p_Redirections} + p_CommandLine);
    process.closeWriteChannel();
    if (!process.waitForFinished(TestHost::c_Timeout)) {
        process.kill();
        process.waitForFinished();
        qFatal("%s %s does not end", qPrintable(p_CommandLine[0]), qPrintable(p_Redirections));
    }
    Outcome outcome;
    if (process.exitStatus() == QProcess::NormalExit)
        outcome.Status = process.exitCode();
    outcome.Out = QString::fromUtf8(process.readAllStandardOutput());
    outcome.Err = QString::fromUtf8(process.readAllStandardError());
    return outcome;
}

void HostStreamsTest::LostResultsAreAFailure_data()
{
    QTest::addColumn<QString>("redirection");
    QTest::addColumn<QStringList>("command");
    QTest::addColumn<QString>("message");
    QString const publish = VARNHOLT_PUBLISH_PROGRAM;
    QString const host = HostProcess::Program();
    auto const row = [&](char const* p_Name, QString const& p_Redirection, char const* p_Cause) {
        QString const lost = QString("the results cannot be written (%1)").arg(p_Cause);
        for (QStringList const& command : {QStringList{host, "status"}, QStringList{host, "--help"},
                                           QStringList{host, "--json", "info"}})
            QTest::newRow(qPrintable(QString("%1 %2").arg(p_Name, command.last())))
                << p_Redirection << command
                << "varnholt-host: " + lost + "; give standard output another place.\n";
        for (QStringList const& command :
             {QStringList{publish, "rules", "--source", "/proc/self/fdinfo"},
              QStringList{publish, "--version"}})
            QTest::newRow(qPrintable(QString("%1 %2").arg(p_Name, command.last())))
                << p_Redirection << command << "varnholt-publish: " + lost + '\n';
    };
    row("closed", ">&-", "Bad file descriptor");
    row("closed pipe", ">&%1", "Broken pipe");
    if (QFile::exists("/dev/full"))
        row("full", ">/dev/full", "No space left on device");
}

void HostStreamsTest::LostResultsAreAFailure()
{
    QFETCH(QString, redirection);
    QFETCH(QStringList, command);
    QFETCH(QString, message);
    int ends[2] = {};
    QCOMPARE(::pipe(ends), 0);
    ::close(ends[0]);
    Outcome const outcome = Run(redirection.replace("%1", QString::number(ends[1])), command);
    ::close(ends[1]);
    QCOMPARE(outcome.Err, message);
    QCOMPARE(outcome.Status, 1);
}

void HostStreamsTest::AFailureKeepsItsOwnStatus()
{
    Outcome const outcome = Run(">&-", Host({"-q", "--json", "config", "fly"}));
    QVERIFY2(outcome.Err.contains("the results cannot be written"), qPrintable(outcome.Err));
    QCOMPARE(outcome.Status, 2);
}

void HostStreamsTest::WithoutAnyStreamTheWorkIsDone()
{
    Outcome const outcome = Run("0<&- 1>&- 2>&-", Host({"install", Game->Folder}));
    QCOMPARE(outcome.Status, 1); // for its result
    QCOMPARE(Game->Wrong(), QStringList());
    QCOMPARE(Run("0<&- 1>&- 2>&-", {VARNHOLT_PUBLISH_PROGRAM, "--version"}).Status, 1);
    QCOMPARE(Run("0<&- 2>&-", Host({"status"})).Status, 0);
}

void HostStreamsTest::WhatSteersATerminalIsEscaped_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("shown");
    auto const row = [](char const* p_Text, char const* p_Shown) {
        QTest::newRow(p_Shown) << QString::fromUtf8(p_Text) << QString::fromUtf8(p_Shown);
    };
    row("a\x1b[31mb", "a\\u001b[31mb");
    row("a\r\nb\tc", "a\\r\\nb\\tc");
    row("\x7f\xc2\x9b", "\\u007f\\u009b");
    row("a\xe2\x80\xae"
        "cba\xe2\x81\xa6",
        "a\\u202ecba\\u2066");
    row("\xe2\x80\xa8\xe2\x80\xa9", "\\u2028\\u2029");
    row("a\\u001b\\n", "a\\u001b\\n");
    row("Jeux été 游戏 \xf0\x9f\x8e\xae ~", "Jeux été 游戏 \xf0\x9f\x8e\xae ~");
    row("", "");
    QTest::newRow("zero") << QString(QChar(0)) << "\\u0000";
}

void HostStreamsTest::WhatSteersATerminalIsEscaped()
{
    QFETCH(QString, text);
    QFETCH(QString, shown);
    QCOMPARE(Programs::Printable(text), shown);
    QCOMPARE(Programs::Printable(shown), shown);
}

void HostStreamsTest::JsonKeepsItsMeaning()
{
    QString name;
    for (ushort code = 0; code < 0x2100; ++code)
        name += QChar(code);
    QJsonObject const object{{name, name}};
    QString const line = QJsonDocument(object).toJson(QJsonDocument::Compact);
    QVERIFY(line.contains(QChar(0x9b)));
    QVERIFY(!Programs::Printable(line).contains(QChar(0x9b)));
    QCOMPARE(QJsonDocument::fromJson(Programs::Printable(line).toUtf8()).object(), object);
}

/// On each of the ways that a text takes out.
void HostStreamsTest::NamesOfFilesAreShownEscaped()
{
    QString const odd = "a\x1b[2J\r\nb";
    QString const shown = "a\\u001b[2J\\r\\nb";
    Game->Content.Add({"Data/" + odd, "bytes"}).Publish(Game->Server);
    QStringList const log{"--log-file", Game->Base + "host.log", "-v"};
    Outcome outcome = Run("", Host(log + QStringList{"install", Game->Base + odd}));
    QCOMPARE(outcome.Status, 0);
    QVERIFY2(outcome.Out.contains("is complete in " + Game->Base + shown), qPrintable(outcome.Out));
    QString const err = outcome.Err;
    QVERIFY(QFile::remove(Game->Base + odd + "/Data/" + odd));
    outcome = Run("", Host({"verify", "--log-file", odd + "/no/log"}));
    QVERIFY2(outcome.Err.contains(shown + "/no/log cannot be"), qPrintable(outcome.Err));
    QVERIFY2(outcome.Out.contains("Data/" + shown), qPrintable(outcome.Out));
    Outcome const failed = Run("", Host({"install", "/proc/" + odd}));
    QVERIFY2(failed.Err.contains(shown) && failed.Status == 7, qPrintable(failed.Err));
    Outcome const asked = Run("", Host({"play", "--account", odd}));
    for (QString const& said : {outcome.Out, outcome.Err, err, failed.Err, asked.Err,
                                QString::fromUtf8(ReadFile(Game->Base + "host.log"))}) {
        QVERIFY(!said.contains('\x1b') && !said.contains('\r') && !said.contains("\nb"));
    }
    Outcome const publish =
        Run("", {VARNHOLT_PUBLISH_PROGRAM, "list", "--output", Game->Base + odd});
    QVERIFY2(publish.Err.contains(shown) && publish.Status != 0, qPrintable(publish.Err));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostStreamsTest)
#include "tst_HostStreams.moc"
