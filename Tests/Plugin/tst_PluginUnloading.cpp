#include "Tests/Support/LoadedPlugin.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QFile>
#include <QLibrary>
#include <QtTest>

namespace Varnholt::Launcher {

/// On its own: Qt's plug-in loader keeps a library for good, a plain library handle does not.
class PluginUnloadingTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ImagesComeWithTheLibraryAndGoWithIt();
};

void PluginUnloadingTest::ImagesComeWithTheLibraryAndGoWithIt()
{
    QString const image = ":/app_pelmora_app/background.jpg";
    QVERIFY(!QFile::exists(image));
    for (int i = 0; i < 2; ++i) {
        QLibrary library(TestSupport::LoadedPlugin::Path());
        QVERIFY2(library.load(), qPrintable(library.errorString()));
        QVERIFY(QFile::exists(image));
        QVERIFY(library.unload());
        QVERIFY(!QFile::exists(image));
    }
}

} // namespace Varnholt::Launcher

VARNHOLT_TEST(Varnholt::Launcher::PluginUnloadingTest)
#include "tst_PluginUnloading.moc"
