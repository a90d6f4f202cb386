#include "Launcher/Helper/CHMOD.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/ScopedCurrentFolder.hpp"
#include "Tests/Support/ScopedVariable.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QTemporaryDir>
#include <QtTest>

#include <cerrno>

namespace Varnholt::Launcher {

using Helper::DoCHMOD;
using TestSupport::ModeOf;
using TestSupport::WriteFile;

/// Callers write modes in decimal digits that spell the wanted octal mode. The system call takes
/// the number as it is, the command, which runs last, reads its digits as octal.
class ChmodTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void TheDigitsOfTheModeAreReadAsOctalInTheEnd_data();
    void TheDigitsOfTheModeAreReadAsOctalInTheEnd();
    void TheSystemCallTakesTheNumberAsItIs_data();
    void TheSystemCallTakesTheNumberAsItIs();
    void TheCommandGetsTheDecimalDigitsAndThePath();
    void AMissingPathGivesTheSystemCallsErrorAndRunsTheCommandAllTheSame();
    void APathThroughAFileGivesItsOwnError();
    void TheCommandsFailureIsNotTheResult();
    void SpecialCharactersAreNoShellCode_data();
    void SpecialCharactersAreNoShellCode();

private:
    /// Puts a "chmod" first in PATH that only writes down its arguments.
    void InstallRecorder(int p_ExitStatus);
    QByteArray PathWithRecorder() const;
    QByteArray Recorded() const { return TestSupport::ReadFile(Folder->path() + "/recorded"); }

    std::unique_ptr<QTemporaryDir> Folder;
    QString File;
};

void ChmodTest::init()
{
    Folder = std::make_unique<QTemporaryDir>();
    File = Folder->path() + "/file";
    QVERIFY(WriteFile(File, "x"));
    QVERIFY(TestSupport::SetMode(File, 0600));
}

void ChmodTest::InstallRecorder(int p_ExitStatus)
{
    QString const recorder = Folder->path() + "/bin/chmod";
    QVERIFY(WriteFile(recorder, "#!/bin/sh\nprintf '[%s]' \"$@\" >> \"" + Folder->path().toUtf8() +
                                    "/recorded\"\nexit " + QByteArray::number(p_ExitStatus) +
                                    "\n"));
    QVERIFY(TestSupport::SetMode(recorder, 0755));
}

QByteArray ChmodTest::PathWithRecorder() const
{
    return Folder->path().toUtf8() + "/bin:" + qgetenv("PATH");
}

void ChmodTest::TheDigitsOfTheModeAreReadAsOctalInTheEnd_data()
{
    QTest::addColumn<int>("Mode");
    QTest::addColumn<int>("Expected");
    QTest::newRow("read-only") << 444 << 0444;
    QTest::newRow("executable") << 777 << 0777;
    QTest::newRow("other") << 640 << 0640;
}

void ChmodTest::TheDigitsOfTheModeAreReadAsOctalInTheEnd()
{
    QFETCH(int, Mode);
    QFETCH(int, Expected);
    QCOMPARE(DoCHMOD(File.toUtf8().constData(), static_cast<unsigned short>(Mode)), 0);
    QCOMPARE(ModeOf(File), Expected);
}

void ChmodTest::TheSystemCallTakesTheNumberAsItIs_data()
{
    QTest::addColumn<int>("Mode");
    QTest::addColumn<int>("Expected");
    QTest::newRow("read-only") << 444 << 0674;
    QTest::newRow("executable") << 777 << 01411;
}

void ChmodTest::TheSystemCallTakesTheNumberAsItIs()
{
    QFETCH(int, Mode);
    QFETCH(int, Expected);
    InstallRecorder(0);
    TestSupport::ScopedVariable const path("PATH", PathWithRecorder());
    QCOMPARE(DoCHMOD(File.toUtf8().constData(), static_cast<unsigned short>(Mode)), 0);
    QCOMPARE(ModeOf(File), Expected);
}

void ChmodTest::TheCommandGetsTheDecimalDigitsAndThePath()
{
    InstallRecorder(0);
    TestSupport::ScopedVariable const path("PATH", PathWithRecorder());
    DoCHMOD(File.toUtf8().constData(), 444);
    QCOMPARE(Recorded(), QByteArray("[444][") + File.toUtf8() + ']');
}

void ChmodTest::AMissingPathGivesTheSystemCallsErrorAndRunsTheCommandAllTheSame()
{
    InstallRecorder(0);
    TestSupport::ScopedVariable const path("PATH", PathWithRecorder());
    QByteArray const missing = Folder->path().toUtf8() + "/missing";
    QCOMPARE(DoCHMOD(missing.constData(), 777), ENOENT);
    QCOMPARE(Recorded(), "[777][" + missing + ']');
}

void ChmodTest::APathThroughAFileGivesItsOwnError()
{
    InstallRecorder(0);
    TestSupport::ScopedVariable const path("PATH", PathWithRecorder());
    QCOMPARE(DoCHMOD((File + "/below").toUtf8().constData(), 777), ENOTDIR);
}

void ChmodTest::TheCommandsFailureIsNotTheResult()
{
    InstallRecorder(1);
    TestSupport::ScopedVariable const path("PATH", PathWithRecorder());
    QCOMPARE(DoCHMOD(File.toUtf8().constData(), 444), 0);
}

void ChmodTest::SpecialCharactersAreNoShellCode_data()
{
    QTest::addColumn<QByteArray>("Name");
    for (char const* const name :
         {"a b", "a\"b", "a$HOME", "a`touch pwned`", "a\\b", "a\\\"b", "$(touch pwned)",
          "\"; touch pwned; \"", "it's", "a;b", "a&b", "a*b", "a\nb", "\xc3\xa9", "!x", "tail\\"})
        QTest::newRow(name) << QByteArray(name);
}

void ChmodTest::SpecialCharactersAreNoShellCode()
{
    QFETCH(QByteArray, Name);
    TestSupport::ScopedCurrentFolder const current(Folder->path());
    QString const file = Folder->path() + '/' + QString::fromUtf8(Name);
    QVERIFY(WriteFile(file, "x"));
    QCOMPARE(DoCHMOD(file.toUtf8().constData(), 444), 0);
    QCOMPARE(ModeOf(file), 0444);
    QVERIFY(!QFile::exists(Folder->path() + "/pwned"));
}

} // namespace Varnholt::Launcher

VARNHOLT_TEST(Varnholt::Launcher::ChmodTest)
#include "tst_Chmod.moc"
