#include "Tests/Pages/CompletionShell.hpp"
#include "Tests/Pages/ProgramHelp.hpp"
#include "Tests/Pages/ToolRun.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

namespace Varnholt::TestSupport {

/// The build, installed into a folder of the test's own.
class InstallationTreeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void TheHostFindsTheModuleThatIsInstalledWithIt();
    void AMovedInstallationWorks();
    void ThePublisherRuns();
    void PagesAndCompletionsStandWhereTheyAreLookedFor();
    void ADesktopFindsTheWindow();
    void TheDocumentsAreThere();
    void NothingElseIsInstalled();
    void AProjectThatEmbedsTheModuleInstallsNothingOfIt();

private:
    QString Path(char const* p_Folder, QString const& p_File) const
    {
        return QDir(Root.filePath("first")).filePath(QString(p_Folder) + '/' + p_File);
    }
    static void CheckHost(QString const& p_Prefix);

    QTemporaryDir Root;
};

void InstallationTreeTest::initTestCase()
{
    ToolRun const run(VARNHOLT_CMAKE,
                      {"--install", VARNHOLT_BUILD_FOLDER, "--prefix", Root.filePath("first")});
    QVERIFY2(run.Status == 0, qPrintable(run.Err));
}

void InstallationTreeTest::CheckHost(QString const& p_Prefix)
{
    ToolRun const run(p_Prefix + "/" VARNHOLT_PROGRAMS_FOLDER "/varnholt-host", {"info", "--json"});
    QVERIFY2(run.Status == 0, qPrintable(run.Out + run.Err));
    QJsonObject const info = QJsonDocument::fromJson(run.Out.toUtf8()).object();
    QString const module = info["module"].toString();
    QCOMPARE(QFileInfo(module).canonicalPath(),
             QFileInfo(p_Prefix + "/" VARNHOLT_MODULE_FOLDER).canonicalFilePath());
    QCOMPARE(info["identifier"].toString(), QString("pelmora_app"));
}

void InstallationTreeTest::TheHostFindsTheModuleThatIsInstalledWithIt()
{
    CheckHost(Root.filePath("first"));
}

void InstallationTreeTest::AMovedInstallationWorks()
{
    QString const moved = Root.filePath("moved");
    QVERIFY(QDir().rename(Root.filePath("first"), moved));
    CheckHost(moved);
    QVERIFY(QDir().rename(moved, Root.filePath("first")));
}

void InstallationTreeTest::ThePublisherRuns()
{
    ToolRun const run(Path(VARNHOLT_PROGRAMS_FOLDER, "varnholt-publish"), {"--help"});
    QVERIFY2(run.Status == 0 && run.Out.contains("build"), qPrintable(run.Out + run.Err));
}

void InstallationTreeTest::PagesAndCompletionsStandWhereTheyAreLookedFor()
{
    for (QString const& program : ProgramHelp::Programs()) {
        QString const page = "man1/" + program + ".1";
        QByteArray built = ReadFile(VARNHOLT_BUILT_PAGES "/man/" + page);
        QVERIFY2(!built.isEmpty(), qPrintable(program));
        QCOMPARE(ReadFile(Path(VARNHOLT_MAN_FOLDER, page)), built);
        for (QString const& shell : CompletionShell::Names()) {
            QString const file = CompletionShell::BuiltFile(shell, program);
            built = ReadFile(VARNHOLT_BUILT_PAGES "/" + file);
            QVERIFY2(!built.isEmpty(), qPrintable(file));
            QCOMPARE(ReadFile(Path(VARNHOLT_DATA_FOLDER, file)), built);
        }
    }
    QString const page = ReadFile(VARNHOLT_BUILT_PAGES "/man/man1/varnholt-host.1");
    QString const module =
        QDir(Path(VARNHOLT_PROGRAMS_FOLDER, "")).relativeFilePath(Path(VARNHOLT_MODULE_FOLDER, ""));
    QVERIFY2(page.contains(module), qPrintable(module));
}

void InstallationTreeTest::ADesktopFindsTheWindow()
{
    auto const installed = [this](char const* p_File) {
        return ReadFile(Path(VARNHOLT_DATA_FOLDER, p_File));
    };
    QByteArray const entry = installed("applications/varnholt-window.desktop");
    QVERIFY(entry.contains("\nExec=varnholt-window\n"));
    QVERIFY(entry.contains("\nIcon=varnholt-window\n"));
    QVERIFY(installed("icons/hicolor/scalable/apps/varnholt-window.svg").contains("<svg"));
    QVERIFY(installed("icons/hicolor/128x128/apps/varnholt-window.png").startsWith("\x89PNG"));
    QVERIFY(installed("metainfo/net.varnholt.window.metainfo.xml")
                .contains("<launchable type=\"desktop-id\">varnholt-window.desktop<"));
    QVERIFY(QFileInfo(Path(VARNHOLT_PROGRAMS_FOLDER, "varnholt-window")).isExecutable());
}

void InstallationTreeTest::TheDocumentsAreThere()
{
    QDir const documents(Path(VARNHOLT_DATA_FOLDER, "doc/varnholt"));
    QDir const source(VARNHOLT_SOURCE_FOLDER);
    QStringList const names{"README.md",
                            "LICENSE",
                            "docs/operating.md",
                            "docs/host-json.md",
                            "docs/host-json.schema.json",
                            "docs/nginx/content.conf"};
    for (QString const& name : names) {
        QVERIFY2(!ReadFile(source.filePath(name)).isEmpty(), qPrintable(name));
        QCOMPARE(ReadFile(documents.filePath(name)), ReadFile(source.filePath(name)));
    }
}

void InstallationTreeTest::NothingElseIsInstalled()
{
    QCOMPARE(QDir(Path(VARNHOLT_PROGRAMS_FOLDER, "")).entryList(QDir::Files, QDir::Name),
             QString(VARNHOLT_INSTALLED_PROGRAMS).split(' '));
    QCOMPARE(QDir(Path(VARNHOLT_MODULE_FOLDER, "")).entryList(QDir::Files).size(), 1);
}

void InstallationTreeTest::AProjectThatEmbedsTheModuleInstallsNothingOfIt()
{
    QString const source = Root.filePath("embedding");
    QVERIFY(WriteFile(source + "/CMakeLists.txt",
                      "cmake_minimum_required(VERSION 3.22)\n"
                      "project(Embedding LANGUAGES CXX)\n"
                      "add_subdirectory(\"" VARNHOLT_SOURCE_FOLDER "\" varnholt)\n"
                      "install(FILES CMakeLists.txt DESTINATION own)\n"));
    ToolRun const configuration(
        VARNHOLT_CMAKE, {"-S", source, "-B", source + "/build", "-DVARNHOLT_BUILD_TOOLS=ON"});
    QVERIFY2(configuration.Status == 0, qPrintable(configuration.Err));
    ToolRun const run(VARNHOLT_CMAKE,
                      {"--install", source + "/build", "--prefix", Root.filePath("embedded")});
    QVERIFY2(run.Status == 0, qPrintable(run.Err));
    QDir const prefix(Root.filePath("embedded"));
    QCOMPARE(prefix.entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList("own"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::InstallationTreeTest)
#include "tst_InstallationTree.moc"
