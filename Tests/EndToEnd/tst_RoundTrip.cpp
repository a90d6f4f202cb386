#include "Launcher/Application/ApplicationManifest.hpp"
#include "Tests/Host/HostProcess.hpp"
#include "Tests/Publisher/PublishedGame.hpp"
#include "Tests/Publisher/ServingThread.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

#include <array>
#include <sys/stat.h>

namespace Varnholt::TestSupport {

namespace {

using Entry = Launcher::ApplicationManifestFileEntry;

/// A file of the game and what the rules say about it.
struct TreatedFile {
    QString Path;
    qint32 Flags = 0;
    QString Locale;
    bool Streamed = false;

    bool Has(Entry::Flag p_Flag) const { return (Flags & p_Flag) != 0; }
};

constexpr std::array<std::pair<Entry::Flag, char const*>, 5> c_Flags{{
    {Entry::ReadOnly, "read-only"},
    {Entry::Executable, "executable"},
    {Entry::FirstBuildOnly, "first-build-only"},
    {Entry::DefaultServerOnly, "default-server-only"},
    {Entry::KeepIfPresent, "keep-if-present"},
}};
constexpr int c_Combinations = 1 << c_Flags.size();

QString RuleOf(TreatedFile const& p_File)
{
    QStringList flags;
    for (auto const& [flag, name] : c_Flags) {
        if (p_File.Has(flag))
            flags += QStringLiteral("\"%1\"").arg(QLatin1String(name));
    }
    QString rule =
        QStringLiteral("{\"match\": \"%1\", \"streamed\": %2, \"flags\": [%3]")
            .arg(p_File.Path, QLatin1String(p_File.Streamed ? "true" : "false"), flags.join(','));
    if (!p_File.Locale.isEmpty())
        rule += QStringLiteral(", \"locale\": \"%1\"").arg(p_File.Locale);
    return rule + '}';
}

/// Every combination of flags, language and list, each with a file.
std::vector<TreatedFile> EveryTreatment()
{
    std::vector<TreatedFile> files;
    for (bool const streamed : {false, true}) {
        for (char const* const locale : {"", "enUS", "frFR"}) {
            for (int bits = 0; bits < c_Combinations; ++bits) {
                TreatedFile file;
                file.Locale = QString::fromLatin1(locale);
                file.Streamed = streamed;
                for (std::size_t i = 0; i < c_Flags.size(); ++i)
                    file.Flags |= (bits >> i & 1) != 0 ? c_Flags[i].first : 0;
                file.Path = QStringLiteral("%1/%2été/file %3")
                                .arg(QLatin1String(streamed ? "Streamed" : "Data"), file.Locale)
                                .arg(bits);
                files.push_back(file);
            }
        }
    }
    return files;
}

QByteArray ContentOf(std::size_t p_Index, int p_Build)
{
    // Of many sizes, nothing among them.
    return SampleContent::Bytes(static_cast<int>(p_Index * 37 % 4000),
                                static_cast<quint32>(p_Index * 10) + static_cast<quint32>(p_Build));
}

int ModeFor(TreatedFile const& p_File)
{
    if (p_File.Has(Entry::Executable))
        return 0777;
    return p_File.Has(Entry::ReadOnly) ? 0444 : 0644;
}

/// A game with every treatment, a default server and a mirror that serve it.
class ServedGame {
public:
    ServedGame()
        : Files(EveryTreatment())
        , Default(Served())
        , Mirror(Served())
    {
        QStringList rules;
        for (TreatedFile const& file : Files)
            rules += RuleOf(file);
        Game.AddRules(rules.join(", ").toUtf8(), "{\"enUS\": \"English\", \"frFR\": \"French\"}");
        Game.Options.Hosts = QStringList(QStringLiteral("127.0.0.1:%1").arg(Mirror.Port()));
    }

    void Publish(int p_Build)
    {
        for (std::size_t i = 0; i < Files.size(); ++i)
            Game.Put(Files[i].Path, ContentOf(i, p_Build));
        Game.Publish(QStringLiteral("build_%1").arg(p_Build));
    }

    /// Runs the host. \return exit status and what it said
    Outcome Run(QStringList const& p_Arguments) const
    {
        QString const url = QStringLiteral("http://127.0.0.1:%1/").arg(Default.Port());
        return HostProcess(Host, {"--settings", Host.SettingsFile, "--content-url", url},
                           p_Arguments)
            .Finish();
    }

    std::vector<TreatedFile> Files;
    PublishedGame Game;
    HostGame Host;
    ServingThread Default;
    ServingThread Mirror;

private:
    QString Served() const
    {
        QDir().mkpath(Game.Options.Output);
        return Game.Options.Output;
    }
};

/// Names of the files that a server was asked for, without their folders.
QSet<QString> AskedOf(ServingThread& p_Server)
{
    QSet<QString> names;
    for (QString const& line : p_Server.Log()) {
        if (line.contains("/files/"))
            names.insert(line.section(' ', 1, 1).section('/', -1));
    }
    return names;
}

} // namespace

/// A game folder is published, served and installed: what comes out is what went in.
class RoundTripTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void AnInstallationIsTheSource();
    void TheFlagSaysWhichServerIsAsked();
    void AnotherLanguageBringsItsFiles();
    void AnUpdateIsTheNewSource();
    void ARepairIsTheSource();

private:
    /// What differs from what was published, in words.
    QStringList Differences(int p_Build, QStringList const& p_Locales) const;

    std::unique_ptr<ServedGame> Served;
};

QStringList RoundTripTest::Differences(int p_Build, QStringList const& p_Locales) const
{
    QStringList differences;
    for (std::size_t i = 0; i < Served->Files.size(); ++i) {
        TreatedFile const& file = Served->Files[i];
        bool const isWanted = file.Locale.isEmpty() || p_Locales.contains(file.Locale);
        if (Served->Host.Has(file.Path) != isWanted) {
            differences += file.Path + QLatin1String(isWanted ? " is missing" : " is not wanted");
            continue;
        }
        if (!isWanted)
            continue;
        // Of a file that is only to be there the first one stays.
        int const build = file.Has(Entry::KeepIfPresent) ? 1 : p_Build;
        if (Served->Host.Read(file.Path) != ContentOf(i, build))
            differences += file.Path + " differs";
        int const mode = ModeOf(Served->Host.Path(file.Path));
        if (mode != ModeFor(file))
            differences += QStringLiteral("%1 has mode 0%2").arg(file.Path).arg(mode, 0, 8);
    }
    return differences;
}

void RoundTripTest::initTestCase()
{
    ::umask(022);
    Served = std::make_unique<ServedGame>();
    Served->Publish(1);
    Outcome const outcome = Served->Run({"install", Served->Host.Folder});
    QVERIFY2(outcome.Status == 0, qPrintable(outcome.Err));
}

void RoundTripTest::AnInstallationIsTheSource()
{
    QCOMPARE(Differences(1, {"enUS"}), QStringList());
    QCOMPARE(Served->Host.Read("Game"), QByteArray("the game"));
    QCOMPARE(ModeOf(Served->Host.Path("Game")), 0777);
    // Nothing else is there but the lists that the module keeps.
    QStringList rest = Served->Host.FilesOnDisk();
    for (TreatedFile const& file : Served->Files)
        rest.removeAll(file.Path);
    rest.removeAll("Game");
    for (QString const& path : rest)
        QVERIFY2(!path.endsWith(".part") && !path.startsWith("Data/"), qPrintable(path));
}

void RoundTripTest::TheFlagSaysWhichServerIsAsked()
{
    QSet<QString> const ofDefault = AskedOf(Served->Default);
    QSet<QString> const ofMirror = AskedOf(Served->Mirror);
    int seen = 0;
    for (std::size_t i = 0; i < Served->Files.size(); ++i) {
        TreatedFile const& file = Served->Files[i];
        QString const name = SampleContent::Md5(ContentOf(i, 1));
        if (file.Locale == "frFR" || ContentOf(i, 1).isEmpty())
            continue;
        bool const isOfDefault = file.Has(Entry::DefaultServerOnly);
        QVERIFY2(ofDefault.contains(name) == isOfDefault, qPrintable(file.Path));
        QVERIFY2(ofMirror.contains(name) != isOfDefault, qPrintable(file.Path));
        ++seen;
    }
    QVERIFY(seen > 2 * c_Combinations);
}

void RoundTripTest::AnotherLanguageBringsItsFiles()
{
    QCOMPARE(Served->Run({"locale", "frFR"}).Status, 0);
    Outcome const outcome = Served->Run({"update"});
    QVERIFY2(outcome.Status == 0, qPrintable(outcome.Err));
    QCOMPARE(Differences(1, {"enUS", "frFR"}), QStringList());
    QCOMPARE(Served->Run({"verify"}).Status, 0);
}

void RoundTripTest::AnUpdateIsTheNewSource()
{
    QCOMPARE(Served->Run({"locale", "enUS"}).Status, 0);
    Served->Publish(2);
    Outcome outcome = Served->Run({"update"});
    QVERIFY2(outcome.Status == 0, qPrintable(outcome.Err));
    QCOMPARE(Served->Run({"locale", "frFR"}).Status, 0);
    outcome = Served->Run({"repair"});
    QVERIFY2(outcome.Status == 0, qPrintable(outcome.Err));
    QCOMPARE(Differences(2, {"enUS", "frFR"}), QStringList());
}

void RoundTripTest::ARepairIsTheSource()
{
    QString const& damaged = Served->Files.at(1).Path;
    QString const& missing = Served->Files.back().Path;
    QVERIFY(SetMode(Served->Host.Path(damaged), 0644));
    Served->Host.Put(damaged, "damaged");
    QVERIFY(QFile::remove(Served->Host.Path(missing)));
    QCOMPARE(Served->Run({"verify"}).Status, 4);
    Outcome const outcome = Served->Run({"repair"});
    QVERIFY2(outcome.Status == 0, qPrintable(outcome.Err));
    // What was kept is gone, so that the last file is the newer one.
    QCOMPARE(Served->Host.Read(missing), ContentOf(Served->Files.size() - 1, 2));
    QCOMPARE(Served->Host.Read(damaged), ContentOf(1, 2));
    QCOMPARE(ModeOf(Served->Host.Path(damaged)), 0444);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::RoundTripTest)
#include "tst_RoundTrip.moc"
