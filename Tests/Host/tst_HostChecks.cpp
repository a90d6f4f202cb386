#include "Host/Core/Failures/Failure.hpp"
#include "Host/Core/Failures/Notice.hpp"
#include "Host/Core/Folder/FolderCheck.hpp"
#include "Host/Core/Folder/GameVolumes.hpp"
#include "Host/Core/Folder/MissingFiles.hpp"
#include "Host/Core/Jobs/RoomCheck.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/OrdinaryUser.hpp"
#include "Tests/Support/ScopedCurrentFolder.hpp"
#include "Tests/Support/ScopedVariable.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
#include <QSet>
#include <QTemporaryDir>
#include <QtTest>

namespace Varnholt::Host {

namespace {

using Launcher::ApplicationManifestFileEntry;
using TestSupport::WriteFile;

constexpr int c_LastKind = static_cast<int>(FailureKind::Interrupted);
constexpr int c_LastNotice = static_cast<int>(NoticeKind::Stopping);

ApplicationManifestFileEntry Entry(QString const& p_Path, QString const& p_Locale = {})
{
    ApplicationManifestFileEntry entry;
    entry.Path = p_Path;
    entry.Locale = p_Locale;
    return entry;
}

QString KindOf(std::optional<Failure> const& p_Failure)
{
    return p_Failure ? p_Failure->Identifier() : QStringLiteral("none");
}

} // namespace

/// The table of failures, and what is looked at before and after a download.
class HostChecksTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { Temporary = std::make_unique<QTemporaryDir>(); }

    void EveryKindOfFailureHasItsOwnIdentifier();
    void EveryKindHasASentenceARemedyAndAStatusOfTheList();
    void EveryKindOfNoticeIsOneSentenceWithItsRemedy();
    void TheNetworksFailuresAreThoseOfItsStatus();
    void MarksInAFileNameStayThemselves();

    void FilesOfOtherLanguagesAreNotMissing();
    void AFolderInAFilesPlaceIsAMissingFile();

    void WhatLiesThereNeedsNoRoom();
    void AVolumeThatIsNotKnownIsNotFull();
    void TheEndOfTheRoomIsSeenWhileDownloading();

    void FoldersAreMadeAbsoluteAndEndInASlash();
    void ANewFolderIsAllowedAndNotCreatedYet();
    void FoldersThatCannotHoldAGameAreRefused();
    void OtherFilesInAFolderWantAConfirmation();
    void AFolderOfTheGameNeedsNoConfirmation();
    void TheRootAndTheHomeFolderAreRefusedEvenWhenConfirmed();
    void AFolderThatCannotBeWrittenIsRefused();
    void TheCheckLeavesNothingBehind();

private:
    QString Path(QString const& p_Name) const { return Temporary->path() + '/' + p_Name; }

    std::unique_ptr<QTemporaryDir> Temporary;
};

void HostChecksTest::EveryKindOfFailureHasItsOwnIdentifier()
{
    QSet<QString> identifiers;
    for (int kind = 0; kind <= c_LastKind; ++kind)
        identifiers += Failure{static_cast<FailureKind>(kind), {}, {}}.Identifier();
    QCOMPARE(identifiers.size(), c_LastKind + 1);
}

void HostChecksTest::EveryKindHasASentenceARemedyAndAStatusOfTheList()
{
    QSet<int> const statuses{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 130};
    for (int kind = 0; kind <= c_LastKind; ++kind) {
        Failure const failure{static_cast<FailureKind>(kind), "SUBJECT", "DETAIL"};
        QVERIFY2(statuses.contains(failure.ExitStatus()), qPrintable(failure.Identifier()));
        bool const namesSubject = failure.Sentence().contains("SUBJECT");
        QVERIFY2(namesSubject == (failure.Kind != FailureKind::Interrupted),
                 qPrintable(failure.Sentence()));
        for (QString const& text : {failure.Sentence(), failure.Remedy()}) {
            QVERIFY2(!text.isEmpty() && !text.endsWith('.'), qPrintable(failure.Identifier()));
            QVERIFY2(!text.contains('{'), qPrintable(text));
        }
    }
}

void HostChecksTest::EveryKindOfNoticeIsOneSentenceWithItsRemedy()
{
    QSet<QString> identifiers;
    int remedies = 0;
    for (int kind = 0; kind <= c_LastNotice; ++kind) {
        Notice const notice{static_cast<NoticeKind>(kind), "SUBJECT", "DETAIL"};
        identifiers += notice.Identifier();
        QString const text = notice.Text();
        QVERIFY2(text.endsWith('.') && !text.contains('{'), qPrintable(text));
        QVERIFY2(text.endsWith(notice.Remedy() + '.'), qPrintable(text));
        remedies += notice.Remedy().isEmpty() ? 0 : 1;
    }
    QCOMPARE(identifiers.size(), c_LastNotice + 1);
    QCOMPARE(remedies, 4);
    Notice const notice{NoticeKind::FolderNotLocked, "/a {d} b/", "no locks"};
    QCOMPARE(notice.Text(), QString("The folder /a {d} b/ cannot be locked (no locks); let no "
                                    "other program work in it at the same time."));
    QCOMPARE(notice.Severity(), Notice::Level::Warning);
}

void HostChecksTest::TheNetworksFailuresAreThoseOfItsStatus()
{
    QVERIFY(Failure({FailureKind::ServerUnreachable, {}, {}}).IsNetwork());
    QVERIFY(Failure({FailureKind::FilesUnreachable, {}, {}}).IsNetwork());
    QVERIFY(!Failure({FailureKind::FilesGivenUp, {}, {}}).IsNetwork());
    QVERIFY(!Failure({FailureKind::DiskFull, {}, {}}).IsNetwork());
}

void HostChecksTest::MarksInAFileNameStayThemselves()
{
    Failure const failure{FailureKind::FileUnwritable, "a {d} {s} b", "the {s} cause"};
    QCOMPARE(failure.Sentence(), QString("the file a {d} {s} b cannot be written (the {s} cause)"));
}

void HostChecksTest::FilesOfOtherLanguagesAreNotMissing()
{
    QVERIFY(WriteFile(Path("there"), "x"));
    Launcher::ApplicationManifest manifest;
    manifest.Files = {Entry("there"), Entry("missing"), Entry("en", "enUS"), Entry("fr", "frFR")};
    manifest.StreamedFiles = {Entry("streamed")};
    QStringList missing;
    for (auto const& entry : MissingFiles(manifest, Path(""), "frFR"))
        missing += entry.Path;
    QCOMPARE(missing, QStringList({"missing", "fr", "streamed"}));
}

void HostChecksTest::AFolderInAFilesPlaceIsAMissingFile()
{
    QVERIFY(QDir().mkpath(Path("Data/file")));
    Launcher::ApplicationManifest manifest;
    manifest.Files = {Entry("Data/file")};
    QCOMPARE(MissingFiles(manifest, Path(""), "enUS").size(), std::size_t(1));
}

void HostChecksTest::WhatLiesThereNeedsNoRoom()
{
    QVERIFY(WriteFile(Path("a.part"), QByteArray(300, 'x')));
    QVERIFY(WriteFile(Path("b"), QByteArray(200, 'x')));
    GameVolumes::Entries const files{Entry("a"), Entry("b"), Entry("c")};
    auto const failureWith = [&](qint64 p_Free) {
        return RoomCheck::BeforeDownload(GameVolumes::SpaceFor(
            Path(""), files, [](QString const&) { return 333; },
            [p_Free](QString const&) { return p_Free; }));
    };
    QCOMPARE(KindOf(failureWith(499)), QString("none"));
    auto const failure = failureWith(498);
    QCOMPARE(KindOf(failure), QString("disk-full"));
    QCOMPARE(failure->Detail, QString("498 bytes are free, 499 bytes more are needed"));
    QCOMPARE(failure->Subject, Path(""));
}

void HostChecksTest::AVolumeThatIsNotKnownIsNotFull()
{
    VolumeSpace space;
    space.Needed = 1000;
    QVERIFY(!RoomCheck::BeforeDownload({space}));
    QVERIFY(!RoomCheck::WhileDownloading(Path(""), -1, 1000));
}

void HostChecksTest::TheEndOfTheRoomIsSeenWhileDownloading()
{
    QVERIFY(!RoomCheck::WhileDownloading(Path(""), 64 * 1024, 1 << 30));
    QCOMPARE(KindOf(RoomCheck::WhileDownloading(Path(""), 64 * 1024 - 1, 1 << 30)),
             QString("disk-full"));
    QVERIFY(!RoomCheck::WhileDownloading(Path(""), 100, 100));
    QVERIFY(!RoomCheck::WhileDownloading(Path(""), 0, 0));
}

void HostChecksTest::FoldersAreMadeAbsoluteAndEndInASlash()
{
    TestSupport::ScopedCurrentFolder const current(Temporary->path());
    QString const here = QDir::currentPath();
    QCOMPARE(FolderCheck::Normalized("game"), here + "/game/");
    QCOMPARE(FolderCheck::Normalized("./a/../game//"), here + "/game/");
    QCOMPARE(FolderCheck::Normalized("/x/y/"), QString("/x/y/"));
    QCOMPARE(FolderCheck::Normalized("/"), QString("/"));
    QCOMPARE(FolderCheck::Normalized("/a/../../.."), QString("/"));
    QCOMPARE(FolderCheck::Normalized("/../..a/x"), QString("/..a/x/"));
}

void HostChecksTest::ANewFolderIsAllowedAndNotCreatedYet()
{
    QCOMPARE(KindOf(FolderCheck::ForInstall(Path("a/b/c/"), {}, false)), QString("none"));
    QVERIFY(!QFileInfo::exists(Path("a")));
}

void HostChecksTest::FoldersThatCannotHoldAGameAreRefused()
{
    QVERIFY(WriteFile(Path("file"), "x"));
    QCOMPARE(KindOf(FolderCheck::ForInstall(Path("file/"), {}, true)), QString("folder-is-file"));
    auto const below = FolderCheck::ForInstall(Path("file/game/"), {}, true);
    QCOMPARE(KindOf(below), QString("folder-is-file"));
    QCOMPARE(below->Subject, Path("file"));
}

void HostChecksTest::OtherFilesInAFolderWantAConfirmation()
{
    QVERIFY(WriteFile(Path("photos/.hidden"), "x"));
    QCOMPARE(KindOf(FolderCheck::ForInstall(Path("photos/"), {}, false)),
             QString("folder-foreign"));
    QCOMPARE(KindOf(FolderCheck::ForInstall(Path("photos/"), {}, true)), QString("none"));
    QVERIFY(QDir().mkpath(Path("empty")));
    QCOMPARE(KindOf(FolderCheck::ForInstall(Path("empty/"), {}, false)), QString("none"));
}

void HostChecksTest::AFolderOfTheGameNeedsNoConfirmation()
{
    QVERIFY(WriteFile(Path("known/Data/a.MPQ"), "x"));
    QCOMPARE(KindOf(FolderCheck::ForInstall(Path("known/"), Path("known/"), false)),
             QString("none"));
    for (QString const& list : {QString("ToDownloadBase.db"), QString("ToDownload.db")}) {
        QVERIFY(WriteFile(Path(list + "/game"), "x"));
        QVERIFY(WriteFile(Path("of " + list + '/' + list), "x"));
        QCOMPARE(KindOf(FolderCheck::ForInstall(Path("of " + list + '/'), {}, false)),
                 QString("none"));
    }
}

void HostChecksTest::TheRootAndTheHomeFolderAreRefusedEvenWhenConfirmed()
{
    QVERIFY(QDir().mkpath(Path("home")));
    QVERIFY(QFile::link(Path("home"), Path("link")));
    TestSupport::ScopedVariable const home("HOME", Path("home").toUtf8());
    for (QString const& folder : {QString("/"), Path("home/"), Path("link/"), Path("x/../home/")})
        QCOMPARE(KindOf(FolderCheck::ForInstall(folder, {}, true)), QString("folder-forbidden"));
    QCOMPARE(KindOf(FolderCheck::ForInstall(Path("home/game/"), {}, false)), QString("none"));
}

void HostChecksTest::AFolderThatCannotBeWrittenIsRefused()
{
    if (!TestSupport::OrdinaryUser::IsPossible())
        QSKIP("root is not stopped by permissions");
    QVERIFY(QDir().mkpath(Path("fixed")));
    QVERIFY(TestSupport::SetMode(Temporary->path(), 0755));
    QVERIFY(TestSupport::SetMode(Path("fixed"), 0555));
    {
        TestSupport::OrdinaryUser const user;
        for (QString const& folder : {Path("fixed/"), Path("fixed/new/game/")}) {
            auto const failure = FolderCheck::ForInstall(folder, {}, false);
            QCOMPARE(KindOf(failure), QString("folder-unwritable"));
            QCOMPARE(failure->Subject, Path("fixed"));
            QVERIFY(!failure->Detail.isEmpty());
        }
    }
    QVERIFY(TestSupport::SetMode(Path("fixed"), 0755));
}

void HostChecksTest::TheCheckLeavesNothingBehind()
{
    QVERIFY(!FolderCheck::ForWriting(Temporary->path()));
    QVERIFY(!FolderCheck::ForInstall(Path("new/"), {}, false));
    QVERIFY(
        QDir(Temporary->path()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
}

} // namespace Varnholt::Host

VARNHOLT_TEST(Varnholt::Host::HostChecksTest)
#include "tst_HostChecks.moc"
