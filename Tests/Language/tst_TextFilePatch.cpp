#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/LocalEncoding.hpp"
#include "Tests/Support/LogCapture.hpp"
#include "Tests/Support/OrdinaryUser.hpp"
#include "Tests/Support/TestApplication.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QTemporaryDir>
#include <QtTest>

#include <unistd.h>

namespace Varnholt::Launcher {

using TestSupport::LocalEncoding;
using TestSupport::ReadFile;
using TestSupport::WriteFile;

class TextFilePatchTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void AMissingFileStaysMissing();
    void ACreatedFileHasNoFinalNewline();
    void ACreatedFileIsUtf8AndGetsItsFolders();
    void PatchesALine_data();
    void PatchesALine();
    void TheNewLineIsTheLastOne();
    void LinesOfOtherLettersSurviveInTheLocalEncoding();
    void AFileThatCannotBeWrittenStaysAsItWas();
    void AnUnreadableFileIsReplacedByTheLine();
    void ASymbolicLinkIsFollowed();
    void NothingIsLogged();

private:
    void Patch(QString const& p_Key, QString const& p_Line, bool p_Create = true)
    {
        App.PatchWoWTextFile(Path, p_Key, p_Line, p_Create);
    }

    TestSupport::TestApplication App;
    std::unique_ptr<QTemporaryDir> Folder;
    QString Path;
};

void TextFilePatchTest::init()
{
    Folder = std::make_unique<QTemporaryDir>();
    Path = Folder->path() + "/Config.wtf";
}

void TextFilePatchTest::AMissingFileStaysMissing()
{
    Path = Folder->path() + "/WTF/Config.wtf";
    Patch("key", "line", false);
    QVERIFY(!QFile::exists(Folder->path() + "/WTF"));
}

void TextFilePatchTest::ACreatedFileHasNoFinalNewline()
{
    // The game has always been given its first line so.
    Patch("key", "SET key \"1\"");
    QCOMPARE(ReadFile(Path), QByteArray("SET key \"1\""));
    Patch("other", "SET other \"2\"");
    QCOMPARE(ReadFile(Path), QByteArray("SET key \"1\"\nSET other \"2\"\n"));
}

void TextFilePatchTest::ACreatedFileIsUtf8AndGetsItsFolders()
{
    for (char const* const encoding : {"UTF-8", "ISO-8859-1"}) {
        LocalEncoding const local(encoding);
        Path = Folder->path() + "/a/b c/" + encoding;
        Patch("key", QString::fromUtf8("é€"));
        QCOMPARE(ReadFile(Path), QByteArray("é€"));
    }
}

void TextFilePatchTest::PatchesALine_data()
{
    QTest::addColumn<QByteArray>("Before");
    QTest::addColumn<QString>("Key");
    QTest::addColumn<QByteArray>("After");
    QTest::newRow("appends") << QByteArray("a\nb\n") << "key" << QByteArray("a\nb\nNEW\n");
    QTest::newRow("replaces") << QByteArray("a\nkey 1\nb\n") << "key" << QByteArray("a\nb\nNEW\n");
    QTest::newRow("every line") << QByteArray("key\na\nkey\n") << "key" << QByteArray("a\nNEW\n");
    QTest::newRow("no final newline") << QByteArray("a\nb") << "key" << QByteArray("a\nb\nNEW\n");
    QTest::newRow("empty file") << QByteArray("") << "key" << QByteArray("NEW\n");
    QTest::newRow("blank lines stay")
        << QByteArray("\na\n\n") << "key" << QByteArray("\na\n\nNEW\n");
    // The key is searched anywhere in a line, in any letter case.
    QTest::newRow("letter case") << QByteArray("SET KEY\na\n") << "key" << QByteArray("a\nNEW\n");
    QTest::newRow("inside a word") << QByteArray("SET textLocale \"1\"\nSET gxWindow \"1\"\n")
                                   << "locale" << QByteArray("SET gxWindow \"1\"\nNEW\n");
    QTest::newRow("inside a value")
        << QByteArray("SET path \"C:/Locale/x\"\na\n") << "locale" << QByteArray("a\nNEW\n");
    QTest::newRow("CRLF") << QByteArray("a\r\nkey\r\nb\r\n") << "key" << QByteArray("a\nb\nNEW\n");
    QTest::newRow("blanks stay") << QByteArray("  a \t\n") << "key" << QByteArray("  a \t\nNEW\n");
}

void TextFilePatchTest::PatchesALine()
{
    QFETCH(QByteArray, Before);
    QFETCH(QString, Key);
    QFETCH(QByteArray, After);
    for (bool const create : {false, true}) {
        QVERIFY(WriteFile(Path, Before));
        Patch(Key, "NEW", create);
        QCOMPARE(ReadFile(Path), After);
    }
}

void TextFilePatchTest::TheNewLineIsTheLastOne()
{
    QVERIFY(WriteFile(Path, "SET locale \"a\"\nb\n"));
    Patch("locale", "SET locale \"frFR\"");
    Patch("installLocale", "SET installLocale \"frFR\"");
    QCOMPARE(ReadFile(Path), QByteArray("b\nSET locale \"frFR\"\nSET installLocale \"frFR\"\n"));
    // The first of the two drops the other's line.
    Patch("locale", "SET locale \"enUS\"");
    QCOMPARE(ReadFile(Path), QByteArray("b\nSET locale \"enUS\"\n"));
}

void TextFilePatchTest::LinesOfOtherLettersSurviveInTheLocalEncoding()
{
    {
        LocalEncoding const local("UTF-8");
        QVERIFY(WriteFile(Path, "SET name \"Zoé €\"\n"));
        Patch("key", QString::fromUtf8("ü"));
        QCOMPARE(ReadFile(Path), QByteArray("SET name \"Zoé €\"\nü\n"));
    }
    LocalEncoding const local("ISO-8859-1");
    QVERIFY(WriteFile(Path, "SET name \"Zo\xE9\"\n"));
    Patch("key", QString::fromUtf8("ü"));
    QCOMPARE(ReadFile(Path), QByteArray("SET name \"Zo\xE9\"\n\xFC\n"));
}

void TextFilePatchTest::AFileThatCannotBeWrittenStaysAsItWas()
{
    QVERIFY(QDir().mkpath(Path)); // a folder of this name, which no user can write to
    Patch("key", "line");
    QVERIFY(QFileInfo(Path).isDir());
    QCOMPARE(QDir(Folder->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).size(), 1);
    QVERIFY(QDir().rmdir(Path));

    VARNHOLT_AS_ORDINARY_USER();
    init();
    QVERIFY(WriteFile(Path, "key\n"));
    QVERIFY(TestSupport::SetMode(Path, 0444));
    Patch("key", "line");
    QCOMPARE(ReadFile(Path), QByteArray("key\n"));
}

void TextFilePatchTest::AnUnreadableFileIsReplacedByTheLine()
{
    VARNHOLT_AS_ORDINARY_USER();
    init();
    QVERIFY(WriteFile(Path, "a\n"));
    QVERIFY(TestSupport::SetMode(Path, 0200));
    Patch("key", "line");
    QVERIFY(TestSupport::SetMode(Path, 0600));
    QCOMPARE(ReadFile(Path), QByteArray("line\n"));
}

void TextFilePatchTest::ASymbolicLinkIsFollowed()
{
    QString const target = Folder->path() + "/target";
    QVERIFY(WriteFile(target, "a\n"));
    QVERIFY(QFile::link(target, Path));
    Patch("key", "line");
    QVERIFY(QFileInfo(Path).isSymbolicLink());
    QCOMPARE(ReadFile(target), QByteArray("a\nline\n"));
}

void TextFilePatchTest::NothingIsLogged()
{
    TestSupport::LogCapture const log;
    Patch("key", "line");
    Patch("key", "line");
    Path = Folder->path();
    Patch("key", "line");
    QCOMPARE(log.Texts(), QStringList());
}

} // namespace Varnholt::Launcher

VARNHOLT_TEST(Varnholt::Launcher::TextFilePatchTest)
#include "tst_TextFilePatch.moc"
