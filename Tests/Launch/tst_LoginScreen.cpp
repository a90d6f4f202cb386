#include "Tests/Launch/LaunchBench.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
#include <QtTest>

namespace Varnholt::TestSupport {

/// The login screen files that a start makes from their templates, or takes away.
class LoginScreenTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void EveryPlaceholderOfTheLayoutIsReplaced();
    void TheScriptIsCopiedByteForByte();
    void TheTemplatesStayAsTheyAre();
    void ALayoutWithoutPlaceholdersIsCopied();
    void OnlyExactPlaceholdersAreReplaced();
    void TextsAreInsertedAsTheyAre_data();
    void TextsAreInsertedAsTheyAre();
    void ThePasswordIsInsertedBehindTheLogin();
    void LayoutAndTextsAreUtf8();
    void WithoutBothTextsThereIsNoLoginScreen_data();
    void WithoutBothTextsThereIsNoLoginScreen();
    void OneCharacterIsEnough();
    void FilesOfTheStartBeforeAreReplaced();
    void OtherFilesOfTheFolderAreLeftAlone();
    void TheFoldersNameIsTakenLiterally();
    void TheScriptKeepsItsTemplatesPermissions();
};

void LoginScreenTest::EveryPlaceholderOfTheLayoutIsReplaced()
{
    LaunchBench bench;
    bench.PutTemplates();
    bench.Put(LaunchBench::c_LayoutTemplate,
              "{varnholt_autolog_login}<a>\r\n{varnholt_autolog_password}\n\t{varnholt_autolog_"
              "login}{varnholt_autolog_login} {other} %1 \\1\n\n{varnholt_autolog_password}");
    QVERIFY(bench.App.Start("me@x", "secret"));
    QCOMPARE(bench.Read(LaunchBench::c_Layout),
             QByteArray("me@x<a>\r\nsecret\n\tme@xme@x {other} %1 \\1\n\nsecret"));
}

void LoginScreenTest::TheScriptIsCopiedByteForByte()
{
    LaunchBench bench;
    bench.PutTemplates();
    QByteArray const script("\0\xff\xfe{varnholt_autolog_login}\r\n{varnholt_autolog_password}",
                            57);
    bench.Put(LaunchBench::c_ScriptTemplate, script);
    QVERIFY(bench.App.Start("me", "secret"));
    QCOMPARE(bench.Read(LaunchBench::c_Script), script);
}

void LoginScreenTest::TheTemplatesStayAsTheyAre()
{
    LaunchBench bench;
    bench.PutTemplates();
    QByteArray const layout = bench.Read(LaunchBench::c_LayoutTemplate);
    QByteArray const script = bench.Read(LaunchBench::c_ScriptTemplate);
    QVERIFY(SetMode(bench.Path(LaunchBench::c_LayoutTemplate), 0644));
    QVERIFY(bench.App.Start("me", "secret"));
    QVERIFY(bench.App.Start("", ""));
    QCOMPARE(bench.Read(LaunchBench::c_LayoutTemplate), layout);
    QCOMPARE(bench.Read(LaunchBench::c_ScriptTemplate), script);
    QCOMPARE(ModeOf(bench.Path(LaunchBench::c_LayoutTemplate)), 0644);
}

void LoginScreenTest::ALayoutWithoutPlaceholdersIsCopied()
{
    for (QByteArray const text : {"", "<Ui/>\n", "é € \xf0\x9d\x84\x9e"}) {
        LaunchBench bench;
        bench.PutTemplates();
        bench.Put(LaunchBench::c_LayoutTemplate, text);
        QVERIFY(bench.App.Start("me", "secret"));
        QCOMPARE(bench.Read(LaunchBench::c_Layout), text);
    }
}

void LoginScreenTest::OnlyExactPlaceholdersAreReplaced()
{
    QByteArray const text = "{VARNHOLT_AUTOLOG_LOGIN} {Varnholt_Autolog_Password} "
                            "{varnholt_autolog_login {varnholt_autolog_password "
                            "varnholt_autolog_login { varnholt_autolog_password }";
    LaunchBench bench;
    bench.PutTemplates();
    bench.Put(LaunchBench::c_LayoutTemplate, text + " {{varnholt_autolog_login}}");
    QVERIFY(bench.App.Start("me", "secret"));
    QCOMPARE(bench.Read(LaunchBench::c_Layout), text + " {me}");
}

void LoginScreenTest::TextsAreInsertedAsTheyAre_data()
{
    QTest::addColumn<QString>("login");
    QTest::addColumn<QString>("password");
    AddRow("markup", "<b>&amp;\"it's\"</b>", "]]></Password><!-- \"&'");
    AddRow("pattern and format", "\\1 \\0 %1 %s $1", "^.*$ %2 \\n");
    AddRow("blanks", "  ", "\t pass word \n");
    AddRow("its own placeholder", "{varnholt_autolog_login}", "{varnholt_autolog_password}");
    AddRow("login's placeholder in the password", "me", "{varnholt_autolog_login}");
}

void LoginScreenTest::TextsAreInsertedAsTheyAre()
{
    QFETCH(QString, login);
    QFETCH(QString, password);
    LaunchBench bench;
    bench.PutTemplates();
    QVERIFY(bench.App.Start(login, password));
    QCOMPARE(bench.Read(LaunchBench::c_Layout),
             "login " + login.toUtf8() + " password " + password.toUtf8() + " .");
}

void LoginScreenTest::ThePasswordIsInsertedBehindTheLogin()
{
    LaunchBench bench;
    bench.PutTemplates();
    QVERIFY(bench.App.Start("<{varnholt_autolog_password}>", "secret"));
    QCOMPARE(bench.Read(LaunchBench::c_Layout), QByteArray("login <secret> password secret ."));
}

void LoginScreenTest::LayoutAndTextsAreUtf8()
{
    LaunchBench bench;
    bench.PutTemplates();
    bench.Put(LaunchBench::c_LayoutTemplate,
              "é {varnholt_autolog_login} € {varnholt_autolog_password} ü");
    QVERIFY(bench.App.Start(QString::fromUtf8("Zoé"), QString::fromUtf8("пароль 𝄞")));
    QCOMPARE(bench.Read(LaunchBench::c_Layout), QByteArray("é Zoé € пароль 𝄞 ü"));
}

void LoginScreenTest::WithoutBothTextsThereIsNoLoginScreen_data()
{
    QTest::addColumn<QString>("login");
    QTest::addColumn<QString>("password");
    AddRow("no login", "", "secret");
    AddRow("no password", "me", "");
    AddRow("neither", QString(), QString());
}

void LoginScreenTest::WithoutBothTextsThereIsNoLoginScreen()
{
    QFETCH(QString, login);
    QFETCH(QString, password);
    LaunchBench bench;
    bench.PutTemplates();
    bench.PutLiveFiles();
    QVERIFY(bench.App.Start(login, password));
    QVERIFY(!bench.HasLiveFiles());
    QVERIFY(bench.RunUntilStarted());
    QCOMPARE(bench.Game.Starts(), QStringList("[-noautolaunch64bit]"));
}

void LoginScreenTest::OneCharacterIsEnough()
{
    LaunchBench bench;
    bench.PutTemplates();
    QVERIFY(bench.App.Start(" ", "x"));
    QCOMPARE(bench.Read(LaunchBench::c_Layout), QByteArray("login   password x ."));
    QVERIFY(bench.Has(LaunchBench::c_Script));
}

void LoginScreenTest::FilesOfTheStartBeforeAreReplaced()
{
    LaunchBench bench;
    bench.PutTemplates();
    bench.PutLiveFiles();
    QVERIFY(bench.App.Start("first", "one"));
    QCOMPARE(bench.Read(LaunchBench::c_Layout), QByteArray("login first password one ."));
    QCOMPARE(bench.Read(LaunchBench::c_Script), QByteArray("script {varnholt_autolog_login}"));
    bench.Put(LaunchBench::c_Script, "changed");
    QVERIFY(bench.App.Start("second", "two"));
    QCOMPARE(bench.Read(LaunchBench::c_Layout), QByteArray("login second password two ."));
    QCOMPARE(bench.Read(LaunchBench::c_Script), QByteArray("script {varnholt_autolog_login}"));
}

void LoginScreenTest::OtherFilesOfTheFolderAreLeftAlone()
{
    LaunchBench bench;
    bench.PutTemplates();
    bench.Put("Interface/GlueXMl/AccountLogin.xml.bak", "other");
    bench.Put("Interface/GlueXMl/CharacterSelect.xml", "{varnholt_autolog_login}");
    QVERIFY(bench.App.Start("me", "secret"));
    QCOMPARE(bench.Read("Interface/GlueXMl/AccountLogin.xml.bak"), QByteArray("other"));
    QCOMPARE(bench.Read("Interface/GlueXMl/CharacterSelect.xml"),
             QByteArray("{varnholt_autolog_login}"));
}

void LoginScreenTest::TheFoldersNameIsTakenLiterally()
{
    LaunchBench bench;
    bench.PutTemplates();
    if (bench.Has("interface/gluexml"))
        QSKIP("this file system does not tell letter case");
    QVERIFY(QDir().rename(bench.Path("Interface/GlueXMl"), bench.Path("Interface/GlueXML")));
    bench.Put("Interface/GlueXML/AccountLogin.xml", "of another program");
    QVERIFY(bench.App.Start("me", "secret"));
    QVERIFY(!bench.Has("Interface/GlueXMl"));
    QCOMPARE(bench.Read("Interface/GlueXML/AccountLogin.xml"), QByteArray("of another program"));
}

void LoginScreenTest::TheScriptKeepsItsTemplatesPermissions()
{
    LaunchBench bench;
    bench.PutTemplates();
    QVERIFY(SetMode(bench.Path(LaunchBench::c_ScriptTemplate), 0644));
    QVERIFY(bench.App.Start("me", "secret"));
    QCOMPARE(ModeOf(bench.Path(LaunchBench::c_Script)), 0644);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::LoginScreenTest)
#include "tst_LoginScreen.moc"
