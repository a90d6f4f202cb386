#include "GameModules/PermissionBits.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/ScopedCurrentFolder.hpp"
#include "Tests/Support/TestApplication.hpp"
#include "Tests/Support/TestHost.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QTemporaryDir>
#include <QtTest>

namespace Varnholt::Launcher {

using TestSupport::ModeOf;
using TestSupport::SetMode;
using TestSupport::WriteFile;

class FixPermissionsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void FlagsDecideTheMode_data();
    void FlagsDecideTheMode();
    void AFileThatIsReadOnlyAlreadyIsGivenItsMode();
    void ANewFileIsGivenTheSameModes();
    void MissingFilesAreSkipped();
    void StreamedFilesAreLeftAlone();
    void ARefusalStopsTheWalk();
    void WithoutAnInstallationFolderNothingIsTouched();

private:
    QString Add(QString const& p_Path, qint32 p_Flags, unsigned p_Mode = 0640);

    std::unique_ptr<QTemporaryDir> Folder;
    std::unique_ptr<TestSupport::TestApplication> App;
    std::unique_ptr<TestSupport::TestHost> Host;
};

void FixPermissionsTest::init()
{
    Folder = std::make_unique<QTemporaryDir>();
    App = std::make_unique<TestSupport::TestApplication>();
    Host = std::make_unique<TestSupport::TestHost>(*App);
    App->InstallationPath = Folder->path() + "/";
}

void FixPermissionsTest::cleanup()
{
    Host.reset();
    App.reset();
}

QString FixPermissionsTest::Add(QString const& p_Path, qint32 p_Flags, unsigned p_Mode)
{
    ApplicationManifestFileEntry entry;
    entry.Path = p_Path;
    entry.Flags = p_Flags;
    App->Manifest.Files.push_back(entry);
    QString const path = Folder->path() + "/" + p_Path;
    if (!WriteFile(path, "content") || !SetMode(path, p_Mode))
        qFatal("cannot write %s", qPrintable(path));
    return path;
}

void FixPermissionsTest::FlagsDecideTheMode_data()
{
    QTest::addColumn<int>("Flags");
    QTest::addColumn<int>("Expected");
    QTest::newRow("none") << 0 << 0640;
    QTest::newRow("read-only") << 1 << 0444;
    QTest::newRow("executable") << 2 << 0777;
    // Read-only first, executable has the last word.
    QTest::newRow("both") << 3 << 0777;
    QTest::newRow("others only") << (0xff & ~3) << 0640;
    QTest::newRow("read-only and others") << (0xff & ~2) << 0444;
}

void FixPermissionsTest::FlagsDecideTheMode()
{
    QFETCH(int, Flags);
    QFETCH(int, Expected);
    QString const path = Add("Data/a b", Flags);
    App->FixPermissions();
    QCOMPARE(ModeOf(path), Expected);
    App->FixPermissions();
    QCOMPARE(ModeOf(path), Expected);
    QCOMPARE(TestSupport::ReadFile(path), QByteArray("content"));
}

void FixPermissionsTest::AFileThatIsReadOnlyAlreadyIsGivenItsMode()
{
    QString const readOnly = Add("a", 1, 0400);
    QString const executable = Add("b", 2, 0444);
    App->FixPermissions();
    QCOMPARE(ModeOf(readOnly), 0444);
    QCOMPARE(ModeOf(executable), 0777);
}

void FixPermissionsTest::ANewFileIsGivenTheSameModes()
{
    QString const path = Folder->path() + "/new";
    for (auto const& [flags, expected] : {std::pair{0, 0600}, {1, 0444}, {2, 0777}, {3, 0777}}) {
        QFile::remove(path);
        QVERIFY(WriteFile(path, "x") && SetMode(path, 0600));
        ApplicationManifestFileEntry entry;
        entry.Flags = flags;
        PermissionBits::ApplyToNewFile(path, entry);
        QCOMPARE(ModeOf(path), expected);
    }
}

void FixPermissionsTest::MissingFilesAreSkipped()
{
    QVERIFY(QFile::remove(Add("missing", 3)));
    QString const next = Add("next", 1);
    App->FixPermissions();
    QVERIFY(!QFile::exists(Folder->path() + "/missing"));
    QCOMPARE(ModeOf(next), 0444);
    QCOMPARE(Host->Errors(), QStringList());
}

void FixPermissionsTest::StreamedFilesAreLeftAlone()
{
    QString const path = Add("streamed", 1);
    App->Manifest.StreamedFiles.swap(App->Manifest.Files);
    App->FixPermissions();
    QCOMPARE(ModeOf(path), 0640);
}

void FixPermissionsTest::ARefusalStopsTheWalk()
{
    QString const first = Add("a", 1);
    QString const second = Add("b", 1);
    QString const third = Add("c", 1);
    Host->ContinueAnswersLeft = 2;
    App->FixPermissions();
    QCOMPARE(ModeOf(first), 0444);
    QCOMPARE(ModeOf(second), 0444);
    QCOMPARE(ModeOf(third), 0640);
    QCOMPARE(Host->ContinueQuestions.load(), 3);
}

void FixPermissionsTest::WithoutAnInstallationFolderNothingIsTouched()
{
    QString const path = Add("a", 2);
    TestSupport::ScopedCurrentFolder const current(Folder->path());
    App->InstallationPath.clear();
    App->FixPermissions();
    QCOMPARE(ModeOf(path), 0640);
}

} // namespace Varnholt::Launcher

VARNHOLT_TEST(Varnholt::Launcher::FixPermissionsTest)
#include "tst_FixPermissions.moc"
