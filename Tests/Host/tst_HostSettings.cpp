#include "Host/Core/HostSettings.hpp"
#include "Tests/Support/FileSizeLimit.hpp"
#include "Tests/Support/FileTools.hpp"

#include <QTemporaryDir>
#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

using Host::HostSettings;

constexpr rlim_t c_LittleRoom = 4096;
constexpr int c_Keys = 10;

} // namespace

/// What is recorded survives a disk without room for more.
class HostSettingsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void AFullDiskKeepsWhatWasRecorded();
    void WhatFindsNoRoomIsKnownAndWrittenLater();
    void WhatIsRemovedWithoutRoomIsRemovedLater();
    void NothingButTheFileIsLeft();

private:
    std::unique_ptr<QTemporaryDir> Folder;
    QString File;
};

void HostSettingsTest::init()
{
    Folder = std::make_unique<QTemporaryDir>();
    File = Folder->filePath("host.ini");
    HostSettings settings(File);
    // The file is longer than the room: one that is written again would be cut.
    for (int i = 0; i < c_Keys; ++i)
        settings.SetValue(QStringLiteral("group/key%1").arg(i), QString(600, 'v'));
    QVERIFY(settings.Flush());
}

void HostSettingsTest::AFullDiskKeepsWhatWasRecorded()
{
    QByteArray const before = ReadFile(File);
    QVERIFY(before.size() > int{c_LittleRoom});
    {
        FileSizeLimit const limit(c_LittleRoom);
        HostSettings settings(File);
        settings.SetValue("new", true);
        settings.Remove("group/key1");
        QVERIFY(!settings.Flush());
    }
    QCOMPARE(ReadFile(File), before);
}

void HostSettingsTest::WhatFindsNoRoomIsKnownAndWrittenLater()
{
    {
        HostSettings settings(File);
        {
            FileSizeLimit const limit(c_LittleRoom);
            settings.SetValue("new", "x");
            settings.SetValue("group/key1", "y");
            QCOMPARE(settings.Value("new"), QVariant("x"));
            QCOMPARE(settings.Value("group/key1"), QVariant("y"));
            QVERIFY(settings.Keys().contains("new"));
            QCOMPARE(settings.Keys().count("group/key1"), 1);
        }
        settings.SetValue("newer", "z");
    }
    QSettings const written(File, QSettings::IniFormat);
    QCOMPARE(written.value("new"), QVariant("x"));
    QCOMPARE(written.value("newer"), QVariant("z"));
    QCOMPARE(written.value("group/key1"), QVariant("y"));
    QCOMPARE(written.allKeys().size(), c_Keys + 2);
}

void HostSettingsTest::WhatIsRemovedWithoutRoomIsRemovedLater()
{
    {
        HostSettings settings(File);
        FileSizeLimit const limit(c_LittleRoom);
        settings.Remove("group/key1");
        QCOMPARE(settings.Value("group/key1", "none"), QVariant("none"));
        QVERIFY(!settings.Keys().contains("group/key1"));
        settings.SetValue("group/key2", "y");
    } // the limit goes first
    QCOMPARE(QSettings(File, QSettings::IniFormat).allKeys().size(), c_Keys - 1);
}

void HostSettingsTest::NothingButTheFileIsLeft()
{
    QCOMPARE(QDir(Folder->path()).entryList(QDir::Files | QDir::Hidden), QStringList("host.ini"));
}

} // namespace Varnholt::TestSupport

QTEST_GUILESS_MAIN(Varnholt::TestSupport::HostSettingsTest)
#include "tst_HostSettings.moc"
