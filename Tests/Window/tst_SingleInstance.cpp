#include "Host/Window/Desktop/SingleInstance.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/ScopedVariable.hpp"
#include "Tests/Support/TestHost.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
#include <QTemporaryDir>

#include <atomic>
#include <thread>

namespace Varnholt::TestSupport {

using Host::SingleInstance;
using Outcome = SingleInstance::Outcome;

/// One window for each settings file.
class SingleInstanceTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void TheSecondOneShowsTheFirst();
    void EachSettingsFileHasItsOwn();
    void ALinkToTheSameFileIsTheSame();
    void WhatAKilledOneLeavesIsNoHindrance();

private:
    /// What becomes of one that begins while this thread handles events.
    static Outcome BeginAnother(QString const& p_File)
    {
        Outcome outcome = Outcome::Unsure;
        std::atomic<bool> isDone{false};
        std::thread other([&] {
            outcome = SingleInstance(p_File).Begin();
            isDone = true;
        });
        bool const isAnswered = QTest::qWaitFor([&] { return isDone.load(); }, TestHost::c_Timeout);
        other.join();
        return isAnswered ? outcome : Outcome::Unsure;
    }

    QTemporaryDir Folder;
    ScopedVariable Runtime{"XDG_RUNTIME_DIR", Folder.path().toUtf8()};
    QString const File = Folder.filePath("host.ini");
};

void SingleInstanceTest::TheSecondOneShowsTheFirst()
{
    SingleInstance first(File);
    int requests = 0;
    connect(&first, &SingleInstance::ShowRequested, this, [&] { ++requests; });
    QCOMPARE(first.Begin(), Outcome::First);
    QCOMPARE(BeginAnother(File), Outcome::Second);
    QTRY_COMPARE(requests, 1);
    QCOMPARE(BeginAnother(File), Outcome::Second);
    QTRY_COMPARE(requests, 2);
}

void SingleInstanceTest::EachSettingsFileHasItsOwn()
{
    SingleInstance first(File);
    QCOMPARE(first.Begin(), Outcome::First);
    QCOMPARE(BeginAnother(Folder.filePath("other.ini")), Outcome::First);
}

void SingleInstanceTest::ALinkToTheSameFileIsTheSame()
{
    QVERIFY(WriteFile(File, ""));
    QVERIFY(QFile::link(File, Folder.filePath("link.ini")));
    SingleInstance first(File);
    QCOMPARE(first.Begin(), Outcome::First);
    QCOMPARE(BeginAnother(Folder.filePath("link.ini")), Outcome::Second);
}

void SingleInstanceTest::WhatAKilledOneLeavesIsNoHindrance()
{
    QString name;
    {
        SingleInstance first(File);
        QCOMPARE(first.Begin(), Outcome::First);
        name = QDir(Folder.path()).entryList({"varnholt-window-*.lock"}).value(0).chopped(5);
    }
    QVERIFY(!name.isEmpty());
    QVERIFY(WriteFile(Folder.filePath(name), "")); // in the place of the socket
    SingleInstance next(File);
    QCOMPARE(next.Begin(), Outcome::First);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::SingleInstanceTest)
#include "tst_SingleInstance.moc"
