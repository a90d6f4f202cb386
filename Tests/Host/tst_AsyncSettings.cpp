#include "Host/Core/Settings/AsyncSettings.hpp"
#include "Host/Core/Settings/SettingsWriter.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QTemporaryDir>
#include <QtTest>

namespace Varnholt::TestSupport {

using namespace Host;

/// Settings that nobody waits for.
class AsyncSettingsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void AnswersComeInOrderAndNotBeforeTheEventLoop();
    void AFileThatOthersHoldKeepsNobodyWaiting();
    void WhatWasAskedForIsDoneBeforeTheEnd();
    void FailuresAreTold();

private:
    /// Collects the answers: a value of "key", or a failure's identifier.
    void Listen(AsyncSettings& p_Settings);

    std::unique_ptr<QTemporaryDir> Folder;
    QString File;
    QStringList Answers;
};

void AsyncSettingsTest::init()
{
    Folder = std::make_unique<QTemporaryDir>();
    File = Folder->filePath("host.ini");
    Answers.clear();
}

void AsyncSettingsTest::Listen(AsyncSettings& p_Settings)
{
    auto const take = [this](QString const& p_Value, std::optional<Failure> const& p_Failure) {
        QCOMPARE(QThread::currentThread(), thread());
        Answers += p_Failure ? p_Failure->Identifier() : p_Value;
    };
    connect(&p_Settings, &AsyncSettings::WasRead, this,
            [take](SettingsFile::Values const& p_Values, std::optional<Failure> const& p_Failure) {
                take("read " + p_Values["key"].toString(), p_Failure);
            });
    connect(&p_Settings, &AsyncSettings::Written, this,
            [take](std::optional<Failure> const& p_Failure) { take("written", p_Failure); });
}

void AsyncSettingsTest::AnswersComeInOrderAndNotBeforeTheEventLoop()
{
    AsyncSettings settings(File);
    Listen(settings);
    settings.Read();
    settings.Write({{"key", "one"}, {"other", 1}});
    settings.Read();
    settings.Write({{"key", QVariant()}});
    settings.Read();
    QCOMPARE(Answers, QStringList());
    QTRY_COMPARE(Answers.size(), 5);
    QCOMPARE(Answers, (QStringList{"read ", "written", "read one", "written", "read "}));
    QVERIFY(ReadFile(File).contains("other=1"));
}

void AsyncSettingsTest::AFileThatOthersHoldKeepsNobodyWaiting()
{
    AsyncSettings settings(File);
    Listen(settings);
    {
        SettingsWriter const other(File);
        QVERIFY(!other.Problem());
        settings.Write({{"key", "one"}});
        QVERIFY(!QTest::qWaitFor([this] { return !Answers.isEmpty(); }, 50));
        QVERIFY(!QFile::exists(File));
    }
    QTRY_COMPARE(Answers, QStringList("written"));
    QVERIFY(ReadFile(File).contains("key=one"));
}

void AsyncSettingsTest::WhatWasAskedForIsDoneBeforeTheEnd()
{
    {
        AsyncSettings settings(File);
        Listen(settings);
        for (int i = 1; i <= 20; ++i)
            settings.Write({{"key", i}});
    }
    QVERIFY(ReadFile(File).contains("key=20"));
    QCoreApplication::processEvents();
    QCOMPARE(Answers, QStringList()); // nobody is left to give them
}

void AsyncSettingsTest::FailuresAreTold()
{
    QVERIFY(WriteFile(File, "no settings\n"));
    AsyncSettings settings(File);
    Listen(settings);
    settings.Read();
    settings.Write({{"key", "one"}});
    QTRY_COMPARE(Answers, (QStringList{"settings-unreadable", "settings-unreadable"}));
    QCOMPARE(ReadFile(File), QByteArray("no settings\n"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::AsyncSettingsTest)
#include "tst_AsyncSettings.moc"
