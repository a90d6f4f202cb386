#include "GameModules/PendingList.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/FileWatch.hpp"
#include "Tests/Support/LocalEncoding.hpp"
#include "Tests/Support/OrdinaryUser.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

namespace PendingList = Launcher::PendingList;

bool Always()
{
    return true;
}

/// A list in a folder of its own.
class ListFile {
public:
    QString Path() const { return Folder.filePath(QStringLiteral("list.db")); }

    void Put(QByteArray const& p_Bytes) const
    {
        QFile file(Path());
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(p_Bytes), qint64{p_Bytes.size()});
    }

    QByteArray Bytes() const
    {
        QFile file(Path());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
    }

    QStringList Names() const
    {
        return QDir(Folder.path())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    QTemporaryDir Folder;
};

} // namespace

class PendingListTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void NamesOfTheListsAreFixed();
    void OnePathPerLineInUtf8EndedByALineFeed();
    void NamesAreTheSameWhenTheyAreReadAgain_data();
    void NamesAreTheSameWhenTheyAreReadAgain();
    void NothingPendingIsAnEmptyFile();
    void WritingReplacesTheWholeListAndLeavesNothingElse();
    void ReadingGivesTheLinesAsTheyAre();
    void AListThatIsNotThereIsNotOpened();
    void AStoppedReadingIsNotComplete();
    void UpdatingStrikesEveryEqualLine();
    void UpdatingComparesBytes_data();
    void UpdatingComparesBytes();
    void UpdatingAsksBeforeEachLine();
    void UpdatingWithoutAChangeWritesNothing();
    void UpdatingPutsTheAddedLineLast();
    void UpdatingCreatesAMissingList();
    void AnUpdateWhoseReadingWasStoppedLeavesTheListAsItIs();
    void AFailedWriteLeavesTheOldList();
    void AListOfAReadOnlyFolderIsWrittenInPlace();
    void AReaderNeverSeesAHalfWrittenList();
};

void PendingListTest::NamesOfTheListsAreFixed()
{
    QCOMPARE(PendingList::c_Base, QString("ToDownloadBase.db"));
    QCOMPARE(PendingList::c_Streamed, QString("ToDownload.db"));
    QCOMPARE(PendingList::c_Casc, QString("ToDownloadCASC.db"));
}

void PendingListTest::OnePathPerLineInUtf8EndedByALineFeed()
{
    QStringList const paths({"Data/a b.MPQ", QString::fromUtf8("Été/ñ"), "c"});
    for (char const* const encoding : {"UTF-8", "ISO-8859-1"}) {
        LocalEncoding const local(encoding);
        ListFile list;
        QVERIFY(PendingList::Write(list.Path(), paths));
        QCOMPARE(list.Bytes(), QByteArray("Data/a b.MPQ\n\xC3\x89t\xC3\xA9/\xC3\xB1\nc\n"));
        QCOMPARE(PendingList::Read(list.Path(), Always).Paths, paths);
    }
}

void PendingListTest::NamesAreTheSameWhenTheyAreReadAgain_data()
{
    QTest::addColumn<QStringList>("Names");
    QString const mark(QChar(0xfeff));
    QTest::newRow("carriage returns") << QStringList({"a\r", "\r", "b\r\r", "c"});
    QTest::newRow("byte order marks") << QStringList({mark + "a", mark, mark + mark});
    QTest::newRow("NUL") << QStringList({QString("a") + QChar(QChar::Null) + "b", "c"});
    QTest::newRow("other line ends")
        << QStringList({QString("a") + QChar(QChar::LineSeparator) + "b", "c\f\v"});
}

void PendingListTest::NamesAreTheSameWhenTheyAreReadAgain()
{
    QFETCH(QStringList, Names);
    ListFile list;
    QVERIFY(PendingList::Write(list.Path(), Names));
    QCOMPARE(PendingList::Read(list.Path(), Always).Paths, Names);
}

void PendingListTest::NothingPendingIsAnEmptyFile()
{
    ListFile list;
    QVERIFY(PendingList::Write(list.Path(), {}));
    QCOMPARE(list.Bytes(), QByteArray(""));
}

void PendingListTest::WritingReplacesTheWholeListAndLeavesNothingElse()
{
    ListFile list;
    list.Put("a much longer list\nthan the new one\n");
    QVERIFY(PendingList::Write(list.Path(), {"x"}));
    QCOMPARE(list.Bytes(), QByteArray("x\n"));
    QCOMPARE(list.Names(), QStringList("list.db"));
}

void PendingListTest::ReadingGivesTheLinesAsTheyAre()
{
    ListFile list;
    list.Put("Data/a b\n leading and trailing \n\n\xC3\xA9\nwithout an end");
    auto const content = PendingList::Read(list.Path(), Always);
    QVERIFY(content.Opened);
    QVERIFY(content.Complete);
    QCOMPARE(content.Paths, QStringList({"Data/a b", " leading and trailing ", "",
                                         QString::fromUtf8("é"), "without an end"}));
}

void PendingListTest::AListThatIsNotThereIsNotOpened()
{
    ListFile list;
    auto const content = PendingList::Read(list.Path(), Always);
    QVERIFY(!content.Opened);
    QVERIFY(content.Paths.isEmpty());
    QVERIFY(QDir().mkdir(list.Path()));
    QVERIFY(!PendingList::Read(list.Path(), Always).Opened);
}

void PendingListTest::AStoppedReadingIsNotComplete()
{
    ListFile list;
    list.Put("a\nb\nc\n");
    int lines = 0;
    auto const content = PendingList::Read(list.Path(), [&] { return ++lines <= 2; });
    QVERIFY(!content.Complete);
    QCOMPARE(content.Paths, QStringList({"a", "b"}));
}

void PendingListTest::UpdatingStrikesEveryEqualLine()
{
    ListFile list;
    list.Put("a\nb\nA\na\nab\n");
    PendingList::Update(list.Path(), "a", QString(), Always);
    QCOMPARE(list.Bytes(), QByteArray("b\nA\nab\n"));
}

void PendingListTest::UpdatingComparesBytes_data()
{
    QTest::addColumn<QByteArray>("Before");
    QTest::addColumn<QString>("Struck");
    QTest::addColumn<QByteArray>("After");
    QString const mark(QChar(0xfeff));
    QByteArray const bytes = mark.toUtf8();
    QTest::newRow("letters") << QByteArray("a\xC3\xA9\na\xC3\xA8\n") << QString::fromUtf8("aé")
                             << QByteArray("a\xC3\xA8\n");
    QTest::newRow("mark") << QByteArray(bytes + "a\na\n") << mark + "a" << QByteArray("a\n");
    QTest::newRow("no mark") << QByteArray(bytes + "a\na\n") << "a" << QByteArray(bytes + "a\n");
    QTest::newRow("carriage return") << QByteArray("a\r\na\n") << "a" << QByteArray("a\r\n");
    QTest::newRow("no UTF-8") << QByteArray("\xFF\nb\n") << "b" << QByteArray("\xFF\n");
    QTest::newRow("empty lines") << QByteArray("\na\n\n") << "" << QByteArray("a\n");
    QTest::newRow("last without an end") << QByteArray("a\nb") << "b" << QByteArray("a\n");
    QTest::newRow("other without an end") << QByteArray("a\nb") << "a" << QByteArray("b\n");
}

void PendingListTest::UpdatingComparesBytes()
{
    QFETCH(QByteArray, Before);
    QFETCH(QString, Struck);
    QFETCH(QByteArray, After);
    ListFile list;
    list.Put(Before);
    PendingList::Update(list.Path(), Struck, QString(), Always);
    QCOMPARE(list.Bytes(), After);
}

void PendingListTest::UpdatingAsksBeforeEachLine()
{
    ListFile list;
    list.Put("a\nb\nc\n");
    int lines = 0;
    PendingList::Update(list.Path(), "a", QString(), [&] { return ++lines <= 3; });
    QCOMPARE(lines, 3);
    QCOMPARE(list.Bytes(), QByteArray("b\nc\n"));
}

void PendingListTest::UpdatingWithoutAChangeWritesNothing()
{
    ListFile list;
    list.Put("a\nb\n");
    FileWatch const watch(list.Path());
    PendingList::Update(list.Path(), "c", QString(), Always);
    PendingList::Update(list.Path(), "b", "b", Always); // where it stands already
    QVERIFY(PendingList::Write(list.Path(), {"a", "b"}));
    QVERIFY(watch.IsUntouched());
}

void PendingListTest::UpdatingPutsTheAddedLineLast()
{
    ListFile list;
    list.Put("a\nb\n");
    PendingList::Update(list.Path(), "a", "a", Always);
    QCOMPARE(list.Bytes(), QByteArray("b\na\n"));
}

void PendingListTest::UpdatingCreatesAMissingList()
{
    ListFile list;
    PendingList::Update(list.Path(), "a", QString(), Always);
    QCOMPARE(list.Bytes(), QByteArray(""));
    ListFile other;
    PendingList::Update(other.Path(), "a", "a", Always);
    QCOMPARE(other.Bytes(), QByteArray("a\n"));
}

// Written back as far as it was read, the list would lose the lines behind.
void PendingListTest::AnUpdateWhoseReadingWasStoppedLeavesTheListAsItIs()
{
    ListFile list;
    list.Put("a\nb\nc\n");
    int lines = 0;
    PendingList::Update(list.Path(), "a", "a", [&] { return ++lines <= 1; });
    QCOMPARE(list.Bytes(), QByteArray("a\nb\nc\n"));
}

void PendingListTest::AFailedWriteLeavesTheOldList()
{
    ListFile list;
    QVERIFY(QDir().mkpath(list.Path() + "/inside"));
    QVERIFY(!PendingList::Write(list.Path(), {"x"}));
    QVERIFY(QFileInfo(list.Path() + "/inside").isDir());
    QCOMPARE(list.Names(), QStringList("list.db"));
}

// Nothing can be put beside it there to take its place.
void PendingListTest::AListOfAReadOnlyFolderIsWrittenInPlace()
{
    VARNHOLT_AS_ORDINARY_USER();
    ListFile list;
    list.Put("a much longer list\nthan the new one\n");
    QVERIFY(SetMode(list.Folder.path(), 0555));
    bool const written = PendingList::Write(list.Path(), {"x"});
    QVERIFY(SetMode(list.Folder.path(), 0755));
    QVERIFY(written);
    QCOMPARE(list.Bytes(), QByteArray("x\n"));
    QCOMPARE(list.Names(), QStringList("list.db"));
}

// The file that a reader holds open is never the one that is being written.
void PendingListTest::AReaderNeverSeesAHalfWrittenList()
{
    ListFile list;
    list.Put("old a\nold b\n");
    QFile reader(list.Path());
    QVERIFY(reader.open(QIODevice::ReadOnly | QIODevice::Unbuffered));
    QVERIFY(PendingList::Write(list.Path(), {"new"}));
    QCOMPARE(reader.readAll(), QByteArray("old a\nold b\n"));
    QCOMPARE(list.Bytes(), QByteArray("new\n"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::PendingListTest)
#include "tst_PendingList.moc"
