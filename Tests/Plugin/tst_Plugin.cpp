#include "GameModules/StandartApplication.hpp"
#include "Launcher/Application/ApplicationRessource.hpp"
#include "Tests/Support/LoadedPlugin.hpp"
#include "Tests/Support/TestHost.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QJsonArray>
#include <QJsonObject>
#include <QLibrary>
#include <QPointer>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

namespace Varnholt::Launcher {

using TestSupport::LoadedPlugin;

class PluginTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void TheMetadataIsReadWithoutLoadingTheCode();
    void TheInstanceIsTheOnlyOneUntilItIsDeleted();
    void TheInstanceHasNoParent();
    void TheInstanceAnswersToItsNamesInTheMetaSystem();
    void ConstructionStartsNothing();
    void NamesAreThoseOfTheGame();
    void PresentationValues_data();
    void PresentationValues();
    void UnknownPresentationValuesAreNull_data();
    void UnknownPresentationValuesAreNull();
    void TheNewsPlaceholderIsAnAddress();
    void ImagesAreEmbedded();
    void ThereIsNoIconAnimationAndNoOtherStorage();
    void UninitDoesNothing();
    void OnlyThePluginsEntryPointsAreExported();
};

void PluginTest::TheMetadataIsReadWithoutLoadingTheCode()
{
    QPluginLoader loader(LoadedPlugin::Path());
    QJsonObject const metadata = loader.metaData();
    QVERIFY(!loader.isLoaded());
    QCOMPARE(metadata["IID"].toString(), QString("Varnholt.Application"));
    QCOMPARE(metadata["className"].toString(), QString("Pelmora"));
    QJsonObject const own = metadata["MetaData"].toObject();
    QCOMPARE(own["name"].toString(), QString("Pelmora"));
    QCOMPARE(own["version"].toString(), QString("0.0.1"));
    QVERIFY(own["dependencies"].isArray());
    QVERIFY(own["dependencies"].toArray().isEmpty());
    QCOMPARE(own["layout"], QJsonValue(c_ApplicationLayout));
}

void PluginTest::TheInstanceIsTheOnlyOneUntilItIsDeleted()
{
    // By the library's own entry point: the plug-in loader keeps a pointer of its own.
    QLibrary library(LoadedPlugin::Path());
    using InstanceFunction = QObject* (*)();
    auto const instance = reinterpret_cast<InstanceFunction>(library.resolve("qt_plugin_instance"));
    QVERIFY2(instance != nullptr, qPrintable(library.errorString()));
    QPointer<QObject> const first = instance();
    QVERIFY(first != nullptr);
    QCOMPARE(instance(), first.data());
    delete first.data();
    QVERIFY(first.isNull());
    std::unique_ptr<QObject> second(instance());
    QVERIFY(second != nullptr);
    QCOMPARE(instance(), second.get());
    QVERIFY(qobject_cast<Application*>(second.get()) != nullptr);
    second.reset();
    QVERIFY(library.unload());
}

void PluginTest::TheInstanceHasNoParent()
{
    LoadedPlugin plugin;
    QVERIFY(plugin.App() != nullptr);
    QVERIFY(plugin.App()->parent() == nullptr);
    QCOMPARE(plugin.App()->thread(), thread());
}

void PluginTest::TheInstanceAnswersToItsNamesInTheMetaSystem()
{
    LoadedPlugin plugin;
    QObject* const object = plugin.GetLoader().instance();
    QVERIFY(object != nullptr);
    QVERIFY(object->qt_metacast("Varnholt::Launcher::Pelmora") != nullptr);
    QVERIFY(object->qt_metacast("Varnholt.Application") != nullptr);
    QVERIFY(object->qt_metacast("Varnholt::Launcher::Other") == nullptr);
    QStringList chain;
    for (QMetaObject const* meta = object->metaObject(); meta != nullptr; meta = meta->superClass())
        chain += QString::fromLatin1(meta->className());
    QCOMPARE(chain,
             QStringList({"Varnholt::Launcher::Pelmora", "Varnholt::Launcher::StandartApplication",
                          "Varnholt::Launcher::Application", "QObject"}));
}

void PluginTest::ConstructionStartsNothing()
{
    LoadedPlugin plugin;
    StandartApplication const& app = *plugin.Standart();
    QVERIFY(app.RemoteBuild.isEmpty() && app.ContentBaseUrl.isEmpty());
    QVERIFY(app.Manifest.Files.empty() && app.Manifest.Locales.empty());
    QCOMPARE(app.Manifest.BuildNumber, 0);
    QVERIFY(app.FilesToDownload.empty() && app.CdnHosts.isEmpty());
    QVERIFY(app.InstallationPath.isEmpty());
    QVERIFY(!app.IsFirstManifestBuild && !app.IsDownloadingBase);
    QVERIFY(app.CurrentDownload == nullptr);
    QCOMPARE(app.SizeRepliesReceived + app.CurrentDownloadIndex + app.DownloadRetryCount,
             quint32{0});
    QVERIFY(app.SyncQueue.empty() && app.AsyncQueue.empty() && app.ContentRequests.empty());
}

void PluginTest::NamesAreThoseOfTheGame()
{
    LoadedPlugin plugin;
    QCOMPARE(plugin.App()->GetName(), QString("Mists of Pandaria"));
    QCOMPARE(plugin.App()->AppId, QString("pelmora_app"));
}

void PluginTest::PresentationValues_data()
{
    QTest::addColumn<int>("Type");
    QTest::addColumn<QString>("Value");
    QTest::newRow("background") << 0 << ":/app_pelmora_app/background.jpg";
    QTest::newRow("background colour") << 1 << "#09111C";
    QTest::newRow("placement") << 2 << "top right";
    QTest::newRow("icon") << 3 << ":/app_pelmora_app/icon_mop.png";
    QTest::newRow("selected icon") << 4 << ":/app_pelmora_app/icon_mop_active.png";
    QTest::newRow("theme colour") << 5 << "3,9,14";
    QTest::newRow("page style") << 6 << "4";
}

void PluginTest::PresentationValues()
{
    QFETCH(int, Type);
    QFETCH(QString, Value);
    LoadedPlugin plugin;
    QCOMPARE(plugin.App()->GetRessource(static_cast<ApplicationRessource::Type>(Type)), Value);
}

void PluginTest::UnknownPresentationValuesAreNull_data()
{
    QTest::addColumn<int>("Type");
    // 7 is a known type that this game's page has nothing for.
    for (int const type : {7, 9, 10, 1000, -1, 2147483647})
        QTest::addRow("%d", type) << type;
}

void PluginTest::UnknownPresentationValuesAreNull()
{
    QFETCH(int, Type);
    LoadedPlugin plugin;
    QVERIFY(plugin.App()->GetRessource(static_cast<ApplicationRessource::Type>(Type)).isNull());
}

void PluginTest::TheNewsPlaceholderIsAnAddress()
{
    LoadedPlugin plugin;
    QUrl const url(plugin.App()->GetRessource(ApplicationRessource::NewsPlaceholder));
    QVERIFY(url.isValid());
    QCOMPARE(url.scheme(), QString("http"));
    QVERIFY(!url.host().isEmpty() && !url.fileName().isEmpty());
}

void PluginTest::ImagesAreEmbedded()
{
    QStringList const names{"background.jpg", "icon_mop.png", "icon_mop_active.png"};
    LoadedPlugin plugin;
    QVERIFY(plugin.App() != nullptr);
    QCOMPARE(QDir(":/app_pelmora_app").entryList(QDir::Files, QDir::Name), names);
    for (QString const& name : names) {
        QString const path = ":/app_pelmora_app/" + name;
        QImageReader reader(path);
        QImage const image = reader.read();
        QVERIFY2(!image.isNull(), qPrintable(name + ": " + reader.errorString()));
        QVERIFY(image.width() >= 16 && image.height() >= 16);
        // The suffix tells the format: a host may go by it.
        QCOMPARE(QString::fromLatin1(QImageReader::imageFormat(path)),
                 QString(name.endsWith("jpg") ? "jpeg" : "png"));
    }
    QVERIFY(QImage(":/app_pelmora_app/icon_mop.png") !=
            QImage(":/app_pelmora_app/icon_mop_active.png"));
}

void PluginTest::ThereIsNoIconAnimationAndNoOtherStorage()
{
    LoadedPlugin plugin;
    QVERIFY(plugin.App()->GetCustomIconAnimation().empty());
    QCOMPARE(plugin.App()->GetCustomIconAnimationFramerate(), 0);
    QVERIFY(!plugin.App()->IsCASCApp());
    plugin.App()->EnableCASC();
    QVERIFY(!plugin.App()->IsCASCApp());
}

void PluginTest::UninitDoesNothing()
{
    LoadedPlugin plugin;
    TestSupport::TestHost host(*plugin.App(), TestSupport::TestHost::Worker::ByHand);
    plugin.App()->Uninit();
    QCOMPARE(host.SyncCount() + host.AsyncCount(), std::size_t{0});
    QCOMPARE(host.SettingChanges(), QStringList());
}

void PluginTest::OnlyThePluginsEntryPointsAreExported()
{
#ifdef Q_OS_LINUX
    QProcess nm;
    nm.start("nm", {"-D", "--defined-only", "--format=posix", LoadedPlugin::Path()});
    if (!nm.waitForStarted())
        QSKIP("no nm on this machine");
    QVERIFY(nm.waitForFinished());
    QStringList own;
    for (QString const& line : QString::fromUtf8(nm.readAllStandardOutput()).split('\n')) {
        QString const symbol = line.section(' ', 0, 0);
        if (symbol.contains("Varnholt") || symbol.startsWith("qt_plugin"))
            own += symbol;
    }
    own.sort();
    // Two modules in one launcher must not meet each other's code.
    QVERIFY2(own == QStringList({"qt_plugin_instance", "qt_plugin_query_metadata"}),
             qPrintable(own.join(' ')));
#else
    QSKIP("reads ELF symbols");
#endif
}

} // namespace Varnholt::Launcher

VARNHOLT_TEST(Varnholt::Launcher::PluginTest)
#include "tst_Plugin.moc"
