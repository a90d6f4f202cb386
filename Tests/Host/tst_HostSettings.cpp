#include "Host/Core/Settings/HostSettings.hpp"
#include "Tests/Support/FileSizeLimit.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

#include <cerrno>

namespace Varnholt::TestSupport {

namespace {

using Host::HostSettings;

constexpr rlim_t c_LittleRoom = 4096;
constexpr int c_Keys = 10;
QString const c_Password = QStringLiteral("S3cret, p=ss; \"wo\\rd\" %1 ");

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
    void TheLastKeyCanBeRemoved();
    void ALinkedFileStaysLinked();
    void WhatAnotherProgramWroteStays();
    void WhatAnotherProgramWroteIsTakenUp();
    void ReadingLeavesNoTrace();
    void WhatIsNoSettingsFileIsNotOverwritten();
    void ARefusalIsKnownBeforeAnythingIsWritten();
    void WhatAKilledProgramLeftIsTakenAway_data();
    void WhatAKilledProgramLeftIsTakenAway();
    void ALinkInItsWayIsNotFollowed();
    void TheModeOfTheFileStays();
    void AFileWithAPasswordIsItsOwnersAlone();
    void ANewFileWithAPasswordIsItsOwnersAlone();

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
    QVERIFY(!settings.Save());
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
        auto const failure = settings.Save();
        QVERIFY(failure);
        QCOMPARE(failure->Identifier(), QString("disk-full"));
        QCOMPARE(failure->Subject, File);
        QCOMPARE(failure->Detail, qt_error_string(EFBIG));
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
    QCOMPARE(QDir(Folder->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList({"host.ini", "host.ini.varnholt-lock"}));
}

void HostSettingsTest::TheLastKeyCanBeRemoved()
{
    QString const file = Folder->filePath("other.ini");
    HostSettings settings(file);
    settings.SetValue("only", true);
    settings.Remove("only");
    QVERIFY(!settings.Save());
    QCOMPARE(QSettings(file, QSettings::IniFormat).allKeys(), QStringList());
}

void HostSettingsTest::ALinkedFileStaysLinked()
{
    QString const link = Folder->filePath("link.ini");
    QVERIFY(QFile::link(File, link));
    {
        HostSettings settings(link);
        settings.SetValue("new", "x");
    }
    QVERIFY(QFileInfo(link).isSymbolicLink());
    QCOMPARE(QSettings(File, QSettings::IniFormat).value("new"), QVariant("x"));
}

void HostSettingsTest::WhatAnotherProgramWroteStays()
{
    HostSettings settings(File);
    {
        QFile other(File);
        QVERIFY(other.open(QIODevice::ReadWrite));
        QByteArray const before = other.readAll();
        other.seek(0);
        QVERIFY(other.write("[General]\nother=1\n\n" + before) > 0);
    }
    settings.SetValue("new", "x");
    QSettings const written(File, QSettings::IniFormat);
    QCOMPARE(written.value("other"), QVariant("1"));
    QCOMPARE(written.value("new"), QVariant("x"));
    QCOMPARE(written.allKeys().size(), c_Keys + 2);
}

void HostSettingsTest::WhatAnotherProgramWroteIsTakenUp()
{
    HostSettings settings(File);
    HostSettings(File).SetValue("other", "x");
    {
        FileSizeLimit const limit(c_LittleRoom);
        settings.SetValue("group/key1", "own");
    } // which finds no room
    QVERIFY(!settings.Value("other").isValid());
    settings.ReadAgain();
    QCOMPARE(settings.Value("other"), QVariant("x"));
    QCOMPARE(settings.Value("group/key1"), QVariant("own"));
    QVERIFY(!settings.Save());
    QCOMPARE(HostSettings(File).All(), settings.All());
    QVERIFY(WriteFile(File, "no settings\n"));
    settings.ReadAgain();
    QCOMPARE(settings.Value("other"), QVariant("x"));
}

void HostSettingsTest::ReadingLeavesNoTrace()
{
    QVERIFY(QFile::remove(File + ".varnholt-lock"));
    QByteArray const before = ReadFile(File);
    {
        HostSettings settings(File);
        QCOMPARE(settings.Keys().size(), c_Keys);
        settings.SetValue("group/key1", settings.Value("group/key1"));
        settings.Remove("none");
        QVERIFY(!settings.Save());
        HostSettings const nowhere(Folder->filePath("no/such/host.ini"));
        QVERIFY(!nowhere.ReadFailure());
    }
    QCOMPARE(QDir(Folder->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList("host.ini"));
    QCOMPARE(ReadFile(File), before);
}

void HostSettingsTest::WhatIsNoSettingsFileIsNotOverwritten()
{
    HostSettings settings(File);
    QVERIFY(WriteFile(File, "[group]\nkey1=v\nke"));
    settings.SetValue("new", true);
    QCOMPARE(settings.Save()->Identifier(), QString("settings-unreadable"));
    QCOMPARE(ReadFile(File), QByteArray("[group]\nkey1=v\nke"));
    // Each of them looks for itself.
    QCOMPARE(HostSettings(File).ReadFailure()->Detail, QString("line 3 is no setting"));
    QVERIFY(WriteFile(File, "[group]\nkey1=v\n; said\n# so\n\nkey2=\"v\"\n"));
    QVERIFY(!settings.Save());
    QCOMPARE(HostSettings(File).Keys(), QStringList({"group/key1", "group/key2", "new"}));
}

void HostSettingsTest::ARefusalIsKnownBeforeAnythingIsWritten()
{
    QByteArray const before = ReadFile(File);
    QVERIFY(!HostSettings(File).WriteRefusal());
    HostSettings const below(File + "/host.ini");
    QVERIFY(!below.ReadFailure());
    QCOMPARE(below.WriteRefusal()->Identifier(), QString("settings-unwritable"));
    QCOMPARE(below.WriteRefusal()->Detail, qt_error_string(ENOTDIR));
    QCOMPARE(ReadFile(File), before);
}

void HostSettingsTest::WhatAKilledProgramLeftIsTakenAway_data()
{
    QTest::addColumn<QString>("left");
    QTest::newRow("a folder") << "host.ini.varnholt-new/fresh";
    QTest::newRow("a file") << "host.ini.varnholt-new";
}

void HostSettingsTest::WhatAKilledProgramLeftIsTakenAway()
{
    QFETCH(QString, left);
    QVERIFY(WriteFile(Folder->filePath(left), "half of someth"));
    HostSettings settings(File);
    settings.SetValue("new", QString::fromUtf8("Jeux été"));
    QCOMPARE(settings.Value("new"), QVariant(QString::fromUtf8("Jeux été")));
    QVERIFY(!settings.Save());
    NothingButTheFileIsLeft();
}

void HostSettingsTest::ALinkInItsWayIsNotFollowed()
{
    QTemporaryDir const elsewhere;
    QVERIFY(WriteFile(elsewhere.filePath("theirs"), "precious"));
    QVERIFY(QFile::link(elsewhere.path(), File + ".varnholt-new"));
    HostSettings settings(File);
    settings.SetValue("new", true);
    QVERIFY(!settings.Save());
    QCOMPARE(ReadFile(elsewhere.filePath("theirs")), QByteArray("precious"));
    NothingButTheFileIsLeft();
}

void HostSettingsTest::TheModeOfTheFileStays()
{
    QVERIFY(SetMode(File, 0640));
    HostSettings settings(File);
    settings.SetValue("new", true);
    QCOMPARE(ModeOf(File), 0640);
}

void HostSettingsTest::AFileWithAPasswordIsItsOwnersAlone()
{
    QVERIFY(SetMode(File, 0644));
    HostSettings settings(File);
    settings.SetValue(HostSettings::c_PasswordKey, c_Password);
    QCOMPARE(ModeOf(File), 0600);
    QCOMPARE(settings.Value(HostSettings::c_PasswordKey).toString(), c_Password);
    QVERIFY(SetMode(File, 0644));
    settings.SetValue("new", true);
    QCOMPARE(ModeOf(File), 0600);
    settings.Remove(HostSettings::c_PasswordKey);
    QVERIFY(!settings.Save());
    QVERIFY(!ReadFile(File).contains("password"));
}

void HostSettingsTest::ANewFileWithAPasswordIsItsOwnersAlone()
{
    QString const file = Folder->filePath("other.ini");
    HostSettings settings(file);
    settings.SetValue(HostSettings::c_PasswordKey, c_Password);
    QVERIFY(!settings.Save());
    QCOMPARE(ModeOf(file), 0600);
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostSettingsTest)
#include "tst_HostSettings.moc"
