#include "Tests/Files/LockingProcesses.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QTemporaryDir>
#include <QtTest>

Q_DECLARE_METATYPE(Varnholt::TestSupport::LockingProcesses::End)

namespace Varnholt::TestSupport {

/// Whatever becomes of those that take a lock, one has it at a time, and the others get it too.
class FileLockKillsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void OneHasItAtATime_data();
    void OneHasItAtATime();
};

void FileLockKillsTest::OneHasItAtATime_data()
{
    QTest::addColumn<LockingProcesses::End>("end");
    QTest::newRow("the file stays") << LockingProcesses::End::Releases;
    QTest::newRow("the file goes") << LockingProcesses::End::Removes;
}

void FileLockKillsTest::OneHasItAtATime()
{
    constexpr int c_Kills = 150;

    QFETCH(LockingProcesses::End, end);
    QTemporaryDir const folder;
    LockingProcesses processes(folder.path() + '/', end);
    for (int i = 0; i < c_Kills; ++i)
        QCOMPARE(processes.Disturb(), QString());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::FileLockKillsTest)
#include "tst_FileLockKills.moc"
