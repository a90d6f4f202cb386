#include "Tests/Publisher/BuildSeries.hpp"
#include "Tests/Publisher/ProgramRun.hpp"
#include "Tests/Publisher/ServingThread.hpp"
#include "Tests/Publisher/SigningKeys.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

/// Keys and signatures as a person makes them, and as minisign reads them.
class SignProgramTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void AKeyIsMadeWithItsPublicOneBesideIt();
    void AKeyIsNeverReplaced();
    void APasswordComesFromEachPlace();
    void ATerminalIsAskedTwiceAndShowsNothing();
    void WhatIsSignedIsGoodForMinisign();
    void ADryRunAsksForNoKey();
    void AServerIsVerifiedWithTheKey();
    void AChangeOfKeyIsSignedByTheOldOne();

private:
    QString Key(QString const& p_Name = "key") const { return Game->Temporary.filePath(p_Name); }
    QByteArray MakeKey(QString const& p_Name = "key") const;

    std::unique_ptr<BuildSeries> Game;
};

namespace {

QByteArray Run(QStringList const& p_Arguments)
{
    ProgramResult const result = RunProgram(p_Arguments);
    if (result.Status != 0)
        QTest::qFail((p_Arguments.join(' ').toUtf8() + ": " + result.Errors).constData(), __FILE__,
                     __LINE__);
    return result.Output.trimmed();
}

/// Whether minisign itself finds all signatures of a tree good.
bool MinisignVerifies(QString const& p_Folder, QByteArray const& p_Key)
{
    int files = 0;
    for (auto const& [path, content] : TreeOf(p_Folder)) {
        if (!path.endsWith(".minisig"))
            continue;
        ++files;
        QString const document = p_Folder + '/' + path.chopped(8);
        if (QProcess::execute("minisign", {"-q", "-V", "-m", document, "-P", p_Key}) != 0)
            return false;
    }
    return files > 0;
}

} // namespace

void SignProgramTest::init()
{
    Game = std::make_unique<BuildSeries>(2);
}

QByteArray SignProgramTest::MakeKey(QString const& p_Name) const
{
    return Run({"keys", "new", Key(p_Name), "--no-password"});
}

void SignProgramTest::AKeyIsMadeWithItsPublicOneBesideIt()
{
    QByteArray const line = MakeKey();
    QCOMPARE(ModeOf(Key()), 0600);
    QVERIFY(ReadFile(Key("key.pub")).endsWith('\n' + line + '\n'));
    QCOMPARE(Run({"keys", "show", Key()}), line);
    QCOMPARE(Run({"keys", "show", Key("key.pub")}), line);
}

void SignProgramTest::AKeyIsNeverReplaced()
{
    for (char const* const name : {"secret", "public.pub"}) {
        QVERIFY(WriteFile(Key(name), "mine"));
        ProgramResult const result =
            RunProgram({"keys", "new", Key(QString(name).remove(".pub")), "--no-password"});
        QCOMPARE(result.Status, 1);
        QVERIFY(result.Errors.contains("exists already"));
        QCOMPARE(ReadFile(Key(name)), QByteArray("mine"));
    }
    QVERIFY(!QFile::exists(Key("public")));
}

void SignProgramTest::APasswordComesFromEachPlace()
{
    auto const secret = Signing::SecretKey::Create();
    secret.Save(Key(), "pass word", Signing::SecretKey::Strength::Quick);
    QByteArray const line = secret.Public().ToText() + '\n';
    QVERIFY(WriteFile(Key("password"), "pass word\nmore\n"));
    QCOMPARE(RunProgram({"keys", "show", Key(), "--password-file", Key("password")}).Output, line);
    QCOMPARE(RunProgram({"keys", "show", Key()}, {{"VARNHOLT_KEY_PASSWORD", "pass word"}}).Output,
             line);
    ProgramRun asked({"keys", "show", Key()});
    asked.Write("pass word\n");
    QCOMPARE(asked.Finish().Output, line);
    ProgramResult const wrong =
        RunProgram({"keys", "show", Key()}, {{"VARNHOLT_KEY_PASSWORD", "password"}});
    QCOMPARE(wrong.Status, 1);
    QCOMPARE(wrong.Errors, "varnholt-publish: " + Key().toUtf8() + ": the password is wrong\n");
    QCOMPARE(RunProgram({"keys", "new", Key("other")}, {{"VARNHOLT_KEY_PASSWORD", ""}}).Status, 1);
    QVERIFY(!QFile::exists(Key("other")));
}

void SignProgramTest::ATerminalIsAskedTwiceAndShowsNothing()
{
    QProcess terminal; // "script" runs it on one
    terminal.start(
        "script",
        {"-qec", QString("'%1' keys new '%2'").arg(VARNHOLT_PUBLISH_FILE, Key()), "/dev/null"});
    QByteArray said;
    auto const answer = [&](QByteArray const& p_Question, QByteArray const& p_Line) {
        while (!said.contains(p_Question) && terminal.waitForReadyRead(30000))
            said += terminal.readAll();
        terminal.write(p_Line);
    };
    answer("Password of ", "one\n");
    answer("Once more: ", "two\n");
    terminal.closeWriteChannel();
    QVERIFY(terminal.waitForFinished());
    said += terminal.readAll();
    QVERIFY2(said.contains("the passwords differ"), said.constData());
    QVERIFY(!said.contains("one") && !said.contains("two"));
    QCOMPARE(terminal.exitCode(), 1);
    QVERIFY(!QFile::exists(Key()));
}

void SignProgramTest::WhatIsSignedIsGoodForMinisign()
{
    QByteArray const line = MakeKey();
    QString const& output = Game->Options.Output;
    QVERIFY(Run({"sign", "--output", output, "--sign-key", Key(), "--expires", "9"})
                .contains("signed 4 files with the key "));
    QVERIFY(MinisignVerifies(output, line));
    Run({"rollback", "--output", output, "--build", "build_1", "--sign-key", Key()});
    Run({"hosts", "--output", output, "a.example", "--sign-key", Key()});
    Run({"realmlist", "--output", output, "logon.example", "--sign-key", Key()});
    Game->Put("own", "other");
    Run(Game->BuildArguments({"--sign-key", Key()}, "b"));
    QVERIFY(MinisignVerifies(output, line));
    QVERIFY(Run({"verify", "--output", output}).contains(", 4 signatures, 0 defects"));
}

void SignProgramTest::ADryRunAsksForNoKey()
{
    MakeKey();
    Run({"sign", "--output", Game->Options.Output, "--sign-key", Key()});
    Run(Game->BuildArguments({"--dry-run"}, "b"));
}

void SignProgramTest::AServerIsVerifiedWithTheKey()
{
    QByteArray const line = MakeKey();
    QString const& output = Game->Options.Output;
    Run({"sign", "--output", output, "--sign-key", Key()});
    ServingThread const server(output);
    QStringList const verify{"verify", "--url", QString("http://127.0.0.1:%1/").arg(server.Port()),
                             "--trust-key"};
    QVERIFY(RunProgram(verify + QStringList(line)).Output.contains("3 signatures"));
    QByteArray const other = MakeKey("other");
    ProgramResult const distrusted = RunProgram(verify + QStringList(Key("other.pub")));
    QCOMPARE(distrusted.Status, 1);
    QVERIFY(distrusted.Errors.contains("version.json: is signed with another key"));
    QVERIFY(WriteFile(Game->OutputPath("pelmora_app/version.json.minisig"), "none"));
    QVERIFY(
        RunProgram(verify + QStringList(line)).Errors.contains("version.json: has no signature"));
}

void SignProgramTest::AChangeOfKeyIsSignedByTheOldOne()
{
    QByteArray const old = MakeKey();
    QByteArray const next = MakeKey("next");
    QString const& output = Game->Options.Output;
    Run({"sign", "--output", output, "--sign-key", Key()});
    QCOMPARE(Run({"keys", "change", "--output", output, "--old", Key(), "--new", Key("next")}),
             next);
    QString const keyFile = Game->OutputPath("pelmora_app/trust-key");
    QCOMPARE(QProcess::execute("minisign", {"-q", "-V", "-m", keyFile, "-P", old}), 0);
    QVERIFY(QFile::remove(keyFile + ".minisig"));
    QVERIFY(MinisignVerifies(output, next));
    QCOMPARE(RunProgram({"rollback", "--output", output, "--build", "build_1", "--sign-key", Key()})
                 .Status,
             2);
    Run({"rollback", "--output", output, "--build", "build_1", "--sign-key", Key("next")});
}

} // namespace Varnholt::TestSupport

#include "tst_SignProgram.moc"

VARNHOLT_TEST(Varnholt::TestSupport::SignProgramTest)
