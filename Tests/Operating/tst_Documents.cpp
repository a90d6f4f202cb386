#include "Files/FileLock.hpp"
#include "GameModules/MirrorChoice.hpp"
#include "GameModules/Pelmora/LoginScreen.hpp"
#include "GameModules/PendingList.hpp"
#include "GameModules/TextFilePatch.hpp"
#include "Host/Core/Session/ControlLine.hpp"
#include "Host/Core/Settings/InstallRecord.hpp"
#include "Launcher/Application/RemoteText.hpp"
#include "Publisher/Publication/ServerLists.hpp"
#include "Publisher/Signatures/SignatureRecord.hpp"
#include "Publisher/Source/HashLine.hpp"
#include "Publisher/Tree/BuildRecord.hpp"
#include "Publisher/Tree/PublishedBuild.hpp"
#include "Publisher/Tree/ServerTexts.hpp"
#include "Publisher/Tree/TreeMark.hpp"
#include "Signing/Signature.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QPluginLoader>
#include <QProcess>
#include <QRegularExpression>
#include <QtTest>

#include <sys/file.h>

namespace Varnholt::TestSupport {

namespace {

using namespace Launcher;

QString const c_AppId = QStringLiteral("pelmora_app");
QString const c_Folder = QStringLiteral("/home/ann/Games/Pandaria/");

QJsonObject ObjectIn(QByteArray const& p_Text)
{
    return QJsonDocument::fromJson(p_Text).object();
}

/// A folder for one example.
class Place {
public:
    QString Put(QString const& p_Name, QByteArray const& p_Text) const
    {
        QString const path = Folder.filePath(p_Name);
        return WriteFile(path, p_Text) ? path : QString();
    }
    QString Path() const { return Folder.path(); }

private:
    QTemporaryDir Folder;
};

bool ReadsVersion(QByteArray const& p_Text)
{
    QStringList defects;
    auto const object = RemoteText::ObjectOf(p_Text);
    return object && (*object)["build"] == "18414" &&
           Publisher::ServerTexts::BuildOf(p_Text, {}, defects) == "18414" && defects.isEmpty();
}

bool ReadsManifest(QByteArray const& p_Text)
{
    bool success = false;
    auto const manifest = ParseApplicationManifest(p_Text, success, false);
    auto const build = Publisher::PublishedBuild::Parse(p_Text, "the example");
    return success && manifest.BuildId == build.Id && manifest.BuildStr == build.Name &&
           manifest.BuildNumber == build.Number && manifest.Locales.size() == 2 &&
           manifest.Files.size() == 2 && manifest.StreamedFiles.size() == 1 &&
           build.Files.size() == 3 && manifest.Files[1].Locale == "frFR" &&
           manifest.Files[0].Has(ApplicationManifestFileEntry::MacGameExecutable);
}

bool ReadsHosts(QByteArray const& p_Text)
{
    QStringList const hosts{"mirror1.example.net", "mirror2.example.net:8080"};
    QStringList defects;
    return MirrorChoice::HostsOf(p_Text) == hosts &&
           Publisher::ServerTexts::HostsOf(p_Text, {}, defects) == hosts && defects.isEmpty();
}

bool ReadsRealmList(QByteArray const& p_Text)
{
    return p_Text == Publisher::ServerLists::RealmListText("logon.example.net");
}

bool ReadsPendingList(QByteArray const& p_Text)
{
    Place const place;
    auto const list = PendingList::Read(place.Put("list", p_Text + '\n'), [] { return true; });
    return list.Complete &&
           list.Paths == QStringList{"Data/common.MPQ", "Data/Streamed/Zone été/tile_1.adt"};
}

bool ReadsLock(QByteArray const& p_Text)
{
    Place const place;
    QFile held(place.Put("lock", p_Text + '\n'));
    if (!held.open(QIODevice::ReadOnly) || ::flock(held.handle(), LOCK_EX) != 0)
        return false;
    FileLock lock(held.fileName());
    return lock.Take() == FileLock::Outcome::Held && lock.Holder() == p_Text;
}

bool ReadsConfiguration(QByteArray const& p_Text)
{
    QByteArray patched = p_Text + '\n';
    QList<QByteArray> const lines = p_Text.split('\n');
    QStringList const keys{"locale", "installLocale", "realmlist"};
    for (int i = 0; i < keys.size(); ++i)
        patched = TextFilePatch::Patched(patched, keys[i], lines.value(i + 1));
    return patched == p_Text + '\n';
}

bool ReadsLoginScreen(QByteArray const& p_Text)
{
    Place const place;
    for (char const* const file : {LoginScreen::c_Layout, LoginScreen::c_Script})
        place.Put(QLatin1String(file) + QLatin1String(LoginScreen::c_TemplateSuffix), p_Text);
    LoginScreen(place.Path() + '/').Build("ann", "word");
    QByteArray const screen = ReadFile(place.Path() + '/' + LoginScreen::c_Layout);
    return screen.contains("text=\"ann\"") && screen.contains("text=\"word\"") &&
           !screen.contains('{');
}

bool ReadsSettings(QByteArray const& p_Text)
{
    Place const place;
    Host::HostSettings settings(place.Put("host.ini", p_Text));
    Host::InstallRecord const record(settings, c_AppId);
    return !settings.ReadFailure() && record.IsInstalled() && record.Folder() == c_Folder &&
           record.CompletedBuild() == "18414" && !record.IsUnfinished() &&
           settings.Value(c_AppId + ".ManifestBuilt").toBool() &&
           settings.Value("options/limit-rate") == "2M";
}

bool ReadsMessages(QByteArray const& p_Text)
{
    QSet<int> kinds;
    for (QByteArray const& line : p_Text.split('\n')) {
        auto const message = Host::ControlLine::MessageIn(line + '\n');
        if (!message || Host::ControlLine::Of(*message) != line + '\n')
            return false;
        kinds += static_cast<int>(message->Kind);
    }
    return kinds.size() == static_cast<int>(Host::ControlMessage::Type::LimitRate) + 1;
}

bool ReadsProgress(QByteArray const& p_Text)
{
    QJsonObject const object = ObjectIn(p_Text);
    return !object.isEmpty() &&
           Host::ControlLine::ObjectOf(Host::ControlLine::SnapshotIn(object)) == object;
}

bool ReadsEnd(QByteArray const& p_Text)
{
    QJsonObject const object = ObjectIn(p_Text);
    return !object.isEmpty() &&
           Host::ControlLine::EndOf(Host::ControlLine::ResultIn(object)) == object;
}

bool ReadsMetadata(QByteArray const& p_Text)
{
    QJsonObject const object = ObjectIn(p_Text);
    return !object.isEmpty() &&
           QPluginLoader(VARNHOLT_PLUGIN_FILE).metaData()["MetaData"].toObject() == object;
}

bool ReadsIndexLine(QByteArray const& p_Text)
{
    auto const line = Publisher::HashLine::Parse(p_Text);
    return line && line->Text() == p_Text + '\n' && line->Path == "Data/common.MPQ";
}

bool ReadsBuilds(QByteArray const& p_Text)
{
    Place const place;
    QFile::rename(place.Put("builds", p_Text),
                  Publisher::TreeMark(place.Path()).PrivatePath(c_AppId + ".builds"));
    Publisher::BuildRecord const record(place.Path(), c_AppId);
    return record.Order() == QStringList{"18414", "18500"} &&
           ObjectIn(record.Text()) == ObjectIn(p_Text);
}

QByteArray const c_Key = "RWQbFD7n3nR4VxrIEJJox9DEE56FViy5aXux9d9/bG4Y7A8NJfRdFt71";

bool ReadsSignature(QByteArray const& p_Text)
{
    auto const found = Signing::Verify("{\"build\":\"18414\"}", p_Text + '\n',
                                       {*Signing::PublicKey::FromText(c_Key)});
    return found.IsGood() && found.Comment.Build == "18414" && found.Comment.Expires;
}

bool ReadsTrustKey(QByteArray const& p_Text)
{
    auto const key = Signing::PublicKey::FromText(p_Text + '\n');
    return key && key->ToText() == c_Key;
}

bool ReadsSignatureRecord(QByteArray const& p_Text)
{
    Place const place;
    QFile::rename(place.Put("signatures", p_Text),
                  Publisher::TreeMark(place.Path()).PrivatePath("signatures"));
    Publisher::SignatureRecord const record(place.Path());
    return record.SigningKey()->ToText() == c_Key && record.Sequence() == 7 &&
           ObjectIn(record.Text()) == ObjectIn(p_Text);
}

/// By the second word behind the marks around an example.
std::map<QString, bool (*)(QByteArray const&)> const c_Readers{
    {"version", ReadsVersion},      {"manifest", ReadsManifest},
    {"hosts", ReadsHosts},          {"realmlist", ReadsRealmList},
    {"pending", ReadsPendingList},  {"lock", ReadsLock},
    {"config", ReadsConfiguration}, {"login", ReadsLoginScreen},
    {"settings", ReadsSettings},    {"control", ReadsMessages},
    {"progress", ReadsProgress},    {"end", ReadsEnd},
    {"metadata", ReadsMetadata},    {"index", ReadsIndexLine},
    {"builds", ReadsBuilds},        {"signature", ReadsSignature},
    {"trustkey", ReadsTrustKey},    {"signatures", ReadsSignatureRecord},
};

} // namespace

/// What the documents say, beside their commands.
class DocumentsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void AnExampleIsReadByWhatReadsTheRealOne_data();
    void AnExampleIsReadByWhatReadsTheRealOne();
    void LinksLeadToSomething();
    void TestsThatAreNamedExist();
};

void DocumentsTest::AnExampleIsReadByWhatReadsTheRealOne_data()
{
    static QRegularExpression const c_Example("```\\w+ (\\w+)\\n(.*?)\\n```",
                                              QRegularExpression::DotMatchesEverythingOption);

    QTest::addColumn<QByteArray>("example");
    QString const text = QString::fromUtf8(ReadFile(VARNHOLT_DOCUMENTS "/formats.md"));
    QStringList formats;
    for (auto examples = c_Example.globalMatch(text); examples.hasNext();) {
        auto const example = examples.next();
        formats += example.captured(1);
        QTest::newRow(qPrintable(formats.last())) << example.captured(2).toUtf8();
    }
    std::sort(formats.begin(), formats.end());
    QStringList known;
    for (auto const& reader : c_Readers)
        known += reader.first;
    QCOMPARE(formats, known);
}

void DocumentsTest::AnExampleIsReadByWhatReadsTheRealOne()
{
    QFETCH(QByteArray, example);
    QVERIFY(c_Readers.at(QTest::currentDataTag())(example));
}

void DocumentsTest::LinksLeadToSomething()
{
    static QRegularExpression const c_Link("\\]\\(([^)#:]+)(?:#[^)]*)?\\)");

    int links = 0;
    for (QString const folder : {VARNHOLT_SOURCE_FOLDER, VARNHOLT_DOCUMENTS})
        for (QString const& name : QDir(folder).entryList({"*.md"}, QDir::Files)) {
            QString const text = QString::fromUtf8(ReadFile(folder + '/' + name));
            for (auto found = c_Link.globalMatch(text); found.hasNext(); ++links) {
                QString const target = found.next().captured(1);
                QVERIFY2(QFileInfo::exists(folder + '/' + target),
                         qPrintable(name + ": " + target));
            }
        }
    QVERIFY(links > 0);
}

void DocumentsTest::TestsThatAreNamedExist()
{
    static QRegularExpression const c_Name("\"([^\"]+)\"|`([^`]+)`");

    auto const said = [](QString const& p_Program, QStringList const& p_Arguments) {
        QProcess process;
        process.start(p_Program, p_Arguments);
        return process.waitForFinished() ? QString::fromUtf8(process.readAll()) : QString();
    };
    QStringList const faults = said(VARNHOLT_FAULTS_FILE, {"--list"}).split('\n');
    QString const tests = said("ctest", {"--test-dir", VARNHOLT_BUILD_FOLDER, "-N"});
    QSet<QString> named;
    QString const text = QString::fromUtf8(ReadFile(VARNHOLT_DOCUMENTS "/security.md"));
    for (QString const& line : text.section("| Test |", 1).split('\n').filter("|")) {
        // The last cell of a row.
        for (auto names = c_Name.globalMatch(line.section('|', -2, -2)); names.hasNext();) {
            auto const name = names.next();
            QVERIFY2(name.captured(2).isEmpty() ? faults.contains(name.captured(1))
                                                : tests.contains(": " + name.captured(2) + '\n'),
                     qPrintable(name.captured()));
            named += name.captured();
        }
    }
    for (char const* const known : {"\"changed manifest\"", "`tree_signer`"})
        QVERIFY2(named.contains(known), known);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::DocumentsTest)
#include "tst_Documents.moc"
