#include "Publisher/Source/SourceReader.hpp"
#include "Publisher/Source/SourceScan.hpp"
#include "Tests/Publisher/FailureOf.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/SampleContent.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QTemporaryDir>
#include <QtTest>

namespace Varnholt::TestSupport {

using Publisher::BuildFile;
using Publisher::ScanSource;
using Publisher::SourceFile;
using Publisher::Treat;

namespace {

Publisher::FileTreatment All(QString const&)
{
    return {};
}

Publisher::FileTreatment OnlyA(QString const& p_Path)
{
    Publisher::FileTreatment treatment;
    treatment.Excluded = p_Path != "a";
    return treatment;
}

} // namespace

class SourceScanTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void FindsEveryFile();
    void OnlyWantedFilesAreLookedAt();
    void ALinkInsideTheSourceIsFollowed();
    void ALinkOutOfTheSourceIsRefused_data();
    void ALinkOutOfTheSourceIsRefused();
    void ALinkThatLeadsNowhereIsRefused();
    void ALinkToAFolderAboveIsRefused();
    void AnExcludedLinkMayLeadAnywhere();
    void TheSourceItselfMayBeALink();
    void ANameThatIsNotUtf8IsRefused();
    void APipeIsRefused();
    void ReadsAFileInBlocks();
    void AFileThatIsNotWhatTheScanFoundIsRefused();

private:
    QString Path(QString const& p_Path) const { return Root + '/' + p_Path; }
    void Put(QString const& p_Path, QByteArray const& p_Bytes = "x") const
    {
        if (!WriteFile(Path(p_Path), p_Bytes))
            qFatal("%s cannot be written", qPrintable(p_Path));
    }
    std::vector<BuildFile> Scan(Treat const& p_Treat = All) const
    {
        return ScanSource(Root, p_Treat);
    }
    QStringList Paths(Treat const& p_Treat = All) const
    {
        QStringList paths;
        for (BuildFile const& file : Scan(p_Treat))
            paths += file.Source.Path;
        return paths;
    }
    QString Refusal() const
    {
        return FailureOf([this] { Scan(); }).Sentence;
    }

    std::unique_ptr<QTemporaryDir> Folder;
    QString Root;
};

void SourceScanTest::init()
{
    Folder = std::make_unique<QTemporaryDir>();
    Root = Folder->filePath("source");
    Put("a");
}

void SourceScanTest::FindsEveryFile()
{
    Put("Data/b", "four");
    Put(".hidden");
    Put(QString::fromUtf8("Été/日本"));
    QVERIFY(QDir().mkpath(Path("an empty folder")));
    QCOMPARE(Paths(), QStringList({".hidden", "Data/b", "a", QString::fromUtf8("Été/日本")}));
    QCOMPARE(Scan()[1].Source.Size, 4);
}

void SourceScanTest::OnlyWantedFilesAreLookedAt()
{
    Put("ToDownload.db");
    Put("b.part");
    QCOMPARE(Paths(OnlyA), QStringList("a"));
    QVERIFY(!Refusal().isEmpty());
}

void SourceScanTest::ALinkInsideTheSourceIsFollowed()
{
    Put("Data/b", "content");
    QVERIFY(QFile::link("Data/b", Path("file")));
    QVERIFY(QFile::link("Data", Path("folder")));
    QCOMPARE(Paths(), QStringList({"Data/b", "a", "file", "folder/b"}));
    QCOMPARE(Publisher::SourceReader::Read(Scan()[2].Source, [](char const*, qint64) {}),
             SampleContent::Md5("content"));
}

void SourceScanTest::ALinkOutOfTheSourceIsRefused_data()
{
    QTest::addColumn<QString>("target");
    QTest::newRow("a file") << "../outside/file";
    QTest::newRow("a folder") << "../outside";
    QTest::newRow("a folder beside with a name that begins alike") << "../source2";
    QTest::newRow("the folder above") << "..";
    QTest::newRow("absolute") << "/";
}

void SourceScanTest::ALinkOutOfTheSourceIsRefused()
{
    QFETCH(QString, target);
    Put("../outside/file");
    Put("../source2/file");
    QVERIFY(QFile::link(target, Path("link")));
    QCOMPARE(Refusal(), QString("link: the symbolic link leads out of the source folder"));
}

void SourceScanTest::ALinkThatLeadsNowhereIsRefused()
{
    QVERIFY(QFile::link("none", Path("link")));
    QCOMPARE(Refusal(), QString("link: the symbolic link leads nowhere"));
    QVERIFY(QFile::remove(Path("link")));
    QVERIFY(QFile::link("link", Path("link")));
    QCOMPARE(Refusal(), QString("link: the symbolic link leads nowhere"));
}

void SourceScanTest::ALinkToAFolderAboveIsRefused()
{
    Put("Data/deep/b");
    QVERIFY(QFile::link("../../Data", Path("Data/deep/link")));
    QCOMPARE(Refusal(),
             QString("Data/deep/link: the symbolic link leads to a folder that holds it"));
    QVERIFY(QFile::remove(Path("Data/deep/link")));
    QVERIFY(QFile::link(".", Path("link")));
    QCOMPARE(Refusal(), QString("link: the symbolic link leads to a folder that holds it"));
}

void SourceScanTest::AnExcludedLinkMayLeadAnywhere()
{
    QVERIFY(QFile::link("/", Path("link")));
    QCOMPARE(Paths(OnlyA), QStringList("a"));
}

void SourceScanTest::TheSourceItselfMayBeALink()
{
    QVERIFY(QFile::link(Root, Folder->filePath("link")));
    QCOMPARE(ScanSource(Folder->filePath("link"), All).size(), std::size_t{1});
}

void SourceScanTest::ANameThatIsNotUtf8IsRefused()
{
    // Qt would write the name as UTF-8.
    QByteArray const name = Path("Data/").toUtf8() + "\xe9t\xe9";
    QVERIFY(QDir().mkpath(Path("Data")));
    FILE* const file = std::fopen(name.constData(), "w");
    QVERIFY(file);
    std::fclose(file);
    QString const refusal = Refusal();
    QVERIFY2(refusal.startsWith("Data/") && refusal.endsWith(": the name is not valid UTF-8"),
             qPrintable(refusal));
}

void SourceScanTest::APipeIsRefused()
{
    QCOMPARE(mkfifo(Path("pipe").toUtf8().constData(), 0600), 0);
    QCOMPARE(Refusal(), QString("pipe: is neither a file nor a folder"));
}

void SourceScanTest::ReadsAFileInBlocks()
{
    QByteArray const bytes = SampleContent::Bytes(1'000'003);
    Put("a", bytes);
    QByteArray read;
    QString const md5 = Publisher::SourceReader::Read(
        Scan()[0].Source, [&read](char const* p_Data, qint64 p_Bytes) {
            read.append(p_Data, static_cast<int>(p_Bytes));
        });
    QCOMPARE(md5, SampleContent::Md5(bytes));
    QCOMPARE(read, bytes);
}

void SourceScanTest::AFileThatIsNotWhatTheScanFoundIsRefused()
{
    SourceFile const file = Scan()[0].Source;
    auto const refusal = [&file] {
        return FailureOf(
                   [&file] { Publisher::SourceReader::Read(file, [](char const*, qint64) {}); })
            .Sentence;
    };
    QString const changed = "a: the file changed while it was being published";
    QCOMPARE(refusal(), QString());
    auto const modified = std::filesystem::last_write_time(file.Location);
    std::filesystem::last_write_time(file.Location, modified + std::chrono::seconds(1));
    QCOMPARE(refusal(), changed);
    Put("a", "longer");
    std::filesystem::last_write_time(file.Location, modified);
    QCOMPARE(refusal(), changed);
    QVERIFY(QFile::remove(Path("a")));
    QVERIFY(refusal().startsWith("a: cannot be read: "));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::SourceScanTest)
#include "tst_SourceScan.moc"
