#include "Tests/Support/TestMain.hpp"

#include <QProcess>
#include <QRegularExpression>
#include <QtTest>

namespace Varnholt::TestSupport {

/// What the host's libraries call of a module's object: they are linked with a copy of its code,
/// which is not to run on it.
class HostContractTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void NoFunctionOfTheModuleRunsFromTheHostsCopy();
};

void HostContractTest::NoFunctionOfTheModuleRunsFromTheHostsCopy()
{
    // Virtual operations are called through the object and are not among the symbols.
    QProcess nm;
    nm.start("nm", {"-C", "-u", VARNHOLT_HOST_CORE_LIBRARY, VARNHOLT_HOST_CLI_LIBRARY});
    if (!nm.waitForStarted())
        QSKIP("no nm on this machine");
    QVERIFY(nm.waitForFinished());
    QCOMPARE(nm.exitCode(), 0);
    QRegularExpression const ofTheModule("Varnholt::Launcher::((?:Application|StandartApplication|"
                                         "HTTP_DownloadFileRequest)::\\w+)");
    QStringList called;
    for (QString const& line : QString::fromUtf8(nm.readAllStandardOutput()).split('\n'))
        if (auto const match = ofTheModule.match(line); match.hasMatch())
            called += match.captured(1);
    called.removeDuplicates();
    // It pushes on a public queue, under that queue's mutex, and does nothing else.
    QVERIFY2(called == QStringList("Application::EnqueueAsync"), qPrintable(called.join(' ')));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostContractTest)
#include "tst_HostContract.moc"
