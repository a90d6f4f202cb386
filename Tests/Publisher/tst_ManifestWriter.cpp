#include "Launcher/Application/ApplicationManifest.hpp"
#include "Publisher/Rules/FlagNames.hpp"
#include "Publisher/Tree/ManifestWriter.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::Publisher {

namespace {

QString const c_FirstMd5 = QStringLiteral("0CC175B9C0F1B6A831C399E269772661");
QString const c_SecondMd5 = QStringLiteral("92EB5FFEE6AE2FEC3AD71C777531578F");
std::map<QString, QString> const c_Locales{{"frFR", "Français"}, {"enUS", "English"}};

/// The platform whose files the module of this build reads.
constexpr ContentPlatform c_OwnPlatform =
    Launcher::c_GameExecutableFlag == Launcher::ApplicationManifestFileEntry::MacGameExecutable
        ? ContentPlatform::Mac
        : ContentPlatform::Windows;

BuildFile File(QString const& p_Path, QString const& p_Md5, FileTreatment const& p_Treatment = {})
{
    BuildFile file;
    file.Source.Path = p_Path;
    file.Treatment = p_Treatment;
    file.Md5 = p_Md5;
    return file;
}

QByteArray Written(std::vector<BuildFile> const& p_Files,
                   ContentPlatform p_Platform = ContentPlatform::Mac)
{
    return ManifestWriter::Write({"18414", "5.4.8 (18414)", 18414}, c_Locales, p_Files, p_Platform);
}

} // namespace

class ManifestWriterTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void WritesExactlyThis();
    void ClientsReadBackWhatWasWritten();
    void ClientsFindTheGamesExecutable();
};

void ManifestWriterTest::WritesExactlyThis()
{
    std::vector<BuildFile> const files{
        File("Game", c_FirstMd5, {6, "", false, false}),
        File("Data/a.mpq", c_FirstMd5),
        File("Data/frFR/a.mpq", c_SecondMd5, {0, "frFR", false, false}),
        File("Data/music.mpq", c_SecondMd5, {0x80, "", true, false}),
    };
    QByteArray expected =
        "{\"available_locales\":[{\"name\":\"English\",\"tag\":\"enUS\"},"
        "{\"name\":\"Français\",\"tag\":\"frFR\"}],"
        "\"build_id\":\"18414\",\"build_number\":18414,\"build_str\":\"5.4.8 (18414)\","
        "\"content\":{\"base_mac\":["
        "{\"flags\":6,\"location\":\"files/0C/0CC175B9C0F1B6A831C399E269772661\","
        "\"md5\":\"0CC175B9C0F1B6A831C399E269772661\",\"path\":\"Game\"},"
        "{\"location\":\"files/0C/0CC175B9C0F1B6A831C399E269772661\","
        "\"md5\":\"0CC175B9C0F1B6A831C399E269772661\",\"path\":\"Data/a.mpq\"},"
        "{\"locale\":\"frFR\",\"location\":\"files/92/92EB5FFEE6AE2FEC3AD71C777531578F\","
        "\"md5\":\"92EB5FFEE6AE2FEC3AD71C777531578F\",\"path\":\"Data/frFR/a.mpq\"}]},"
        "\"streamed_content\":["
        "{\"flags\":128,\"location\":\"files/92/92EB5FFEE6AE2FEC3AD71C777531578F\","
        "\"md5\":\"92EB5FFEE6AE2FEC3AD71C777531578F\",\"path\":\"Data/music.mpq\"}]}";
    QCOMPARE(Written(files), expected);
    QCOMPARE(Written(files, ContentPlatform::Windows), expected.replace("base_mac", "base_win"));
}

void ManifestWriterTest::ClientsReadBackWhatWasWritten()
{
    QString const path = QString::fromUtf8("Data/Été \"1\"\\日本.mpq");
    QByteArray const bytes =
        Written({File(path, c_FirstMd5, {0x21, "frFR", false, false}), File("b", c_SecondMd5),
                 File("s", c_SecondMd5, {2, "", true})},
                c_OwnPlatform);
    bool success = false;
    Launcher::ApplicationManifest const manifest =
        Launcher::ParseApplicationManifest(bytes, success, false);
    QVERIFY(success);
    QCOMPARE(manifest.BuildId, QString("18414"));
    QCOMPARE(manifest.BuildStr, QString("5.4.8 (18414)"));
    QCOMPARE(manifest.BuildNumber, 18414);
    QCOMPARE(manifest.Locales.size(), c_Locales.size());
    QCOMPARE(manifest.Locales.at("frFR").Name, QString::fromUtf8("Français"));
    QCOMPARE(manifest.Files.size(), std::size_t{2});
    QCOMPARE(manifest.Files[0].Path, path);
    QCOMPARE(manifest.Files[0].Md5, c_FirstMd5);
    QCOMPARE(manifest.Files[0].Location, QString("files/0C/") + c_FirstMd5);
    QCOMPARE(manifest.Files[0].Flags, 0x21);
    QCOMPARE(manifest.Files[0].Locale, QString("frFR"));
    QCOMPARE(manifest.Files[1].Flags, 0);
    QCOMPARE(manifest.Files[1].Locale, QString(""));
    QCOMPARE(manifest.StreamedFiles.size(), std::size_t{1});
    QCOMPARE(manifest.StreamedFiles[0].Path, QString("s"));
    QCOMPARE(manifest.StreamedFiles[0].Flags, 2);
}

void ManifestWriterTest::ClientsFindTheGamesExecutable()
{
    auto const flag = FlagNames::Flag("game-executable", c_OwnPlatform);
    QVERIFY(flag);
    bool success = false;
    Launcher::ApplicationManifest const manifest = Launcher::ParseApplicationManifest(
        Written({File("Game", c_FirstMd5, {*flag, "", false, false})}, c_OwnPlatform), success,
        false);
    QCOMPARE(manifest.Files.size(), std::size_t{1});
    QVERIFY(manifest.Files[0].Has(Launcher::c_GameExecutableFlag));
}

} // namespace Varnholt::Publisher

VARNHOLT_TEST(Varnholt::Publisher::ManifestWriterTest)
#include "tst_ManifestWriter.moc"
