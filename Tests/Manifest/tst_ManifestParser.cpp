#include "Launcher/Application/ApplicationManifest.hpp"
#include "Launcher/Application/RemoteText.hpp"
#include "Tests/Support/LogCapture.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QJsonDocument>
#include <QtTest>

namespace Varnholt::Launcher {

namespace {

#ifdef VARNHOLT_CONTENT_PLATFORM_WIN
QByteArray const c_Key = "base_win";
QByteArray const c_OtherKey = "base_mac";
#else
QByteArray const c_Key = "base_mac";
QByteArray const c_OtherKey = "base_win";
#endif

QByteArray const c_Locales = R"("available_locales": [
    {"tag": "frFR", "name": "French"}, {"tag": "enUS", "name": "English"}])";

struct Parsed {
    bool Success = false;
    ApplicationManifest Manifest;
};

Parsed Parse(QByteArray const& p_Data, bool p_PreferSierra = false)
{
    Parsed parsed;
    parsed.Success = !p_Data.startsWith('{'); // the other value than most of the tests expect
    parsed.Manifest = ParseApplicationManifest(p_Data, parsed.Success, p_PreferSierra);
    return parsed;
}

/// A manifest with these rows as base files.
Parsed ParseFiles(QByteArray const& p_Rows)
{
    return Parse("{" + c_Locales + R"(, "content": {")" + c_Key + R"(": [)" + p_Rows + "]}}");
}

} // namespace

class ManifestParserTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void RefusesWhatIsNoObject_data();
    void RefusesWhatIsNoObject();
    void ReadsTheIdentity();
    void BuildNumberIsZeroUnlessItIsAWholeNumber_data();
    void BuildNumberIsZeroUnlessItIsAWholeNumber();
    void LocalesAreOrderedByTag();
    void EveryLocaleRowIsKeptUnderItsTagTheLaterOneWins();
    void ReadsAFileEntry();
    void MissingKeysOfAnEntryReadAsEmptyTextsThatAreNotNull();
    void FlagsAreReadOnlyWhenPresent();
    void EntriesOfUndeclaredLanguagesAreDroppedSilently();
    void EntriesKeepTheirOrderAndTheirDuplicates();
    void PlainRowsReadAsOthers_data();
    void PlainRowsReadAsOthers();
    void ReadsTheListOfItsPlatformOnly();
    void TheSierraListIsReadOnlyOnDemand();
    void StreamedContentIsATopLevelList();
    void WrongTypesBelowTheTopReadAsEmpty();
    void TheDocumentEndsAtANulByte();
    void InvalidUtf8ArrivesAsReplacementCharacters();
};

void ManifestParserTest::RefusesWhatIsNoObject_data()
{
    QTest::addColumn<QByteArray>("Data");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("array") << QByteArray("[]");
    QTest::newRow("array of object") << QByteArray("[{}]");
    QTest::newRow("text") << QByteArray("\"a\"");
    QTest::newRow("page") << QByteArray("<html>404</html>");
    QTest::newRow("cut") << QByteArray("{\"build_id\": \"a\"");
    QTest::newRow("more behind") << QByteArray("{} {}");
    QTest::newRow("comma") << QByteArray("{\"build_number\": 7,}");
}

void ManifestParserTest::RefusesWhatIsNoObject()
{
    QFETCH(QByteArray, Data);
    TestSupport::LogCapture const log;
    bool success = true;
    ApplicationManifest const manifest = ParseApplicationManifest(Data, success, false);
    QVERIFY(!success);
    QCOMPARE(manifest.BuildNumber, 0);
    QVERIFY(manifest.BuildId.isEmpty() && manifest.BuildStr.isEmpty());
    QVERIFY(manifest.Locales.empty() && manifest.Files.empty() && manifest.StreamedFiles.empty());
    QCOMPARE(log.Texts(), QStringList());
}

void ManifestParserTest::ReadsTheIdentity()
{
    Parsed const parsed = Parse(R"({"more": [1], "build_id": "id", "build_str": "5.4.8 \u00e9",
        "build_number": 18414, "content": {"more": 1}})");
    QVERIFY(parsed.Success);
    QCOMPARE(parsed.Manifest.BuildId, QString("id"));
    QCOMPARE(parsed.Manifest.BuildStr, QString::fromUtf8("5.4.8 é"));
    QCOMPARE(parsed.Manifest.BuildNumber, 18414);
}

void ManifestParserTest::BuildNumberIsZeroUnlessItIsAWholeNumber_data()
{
    QTest::addColumn<QByteArray>("Value");
    QTest::addColumn<int>("Expected");
    QTest::newRow("whole") << QByteArray("7") << 7;
    QTest::newRow("negative") << QByteArray("-7") << -7;
    QTest::newRow("whole as decimal") << QByteArray("7.0") << 7;
    QTest::newRow("fraction") << QByteArray("7.5") << 0;
    QTest::newRow("text") << QByteArray("\"7\"") << 0;
    QTest::newRow("null") << QByteArray("null") << 0;
    QTest::newRow("too big") << QByteArray("4294967296") << 0;
}

void ManifestParserTest::BuildNumberIsZeroUnlessItIsAWholeNumber()
{
    QFETCH(QByteArray, Value);
    QFETCH(int, Expected);
    Parsed const parsed = Parse("{\"build_number\": " + Value + "}");
    QVERIFY(parsed.Success);
    QCOMPARE(parsed.Manifest.BuildNumber, Expected);
}

void ManifestParserTest::LocalesAreOrderedByTag()
{
    Parsed const parsed = Parse("{" + c_Locales + "}");
    QStringList tags;
    QStringList names;
    for (auto const& row : parsed.Manifest.Locales) {
        QCOMPARE(row.first, row.second.Tag);
        tags += row.second.Tag;
        names += row.second.Name;
    }
    QCOMPARE(tags, QStringList({"enUS", "frFR"}));
    QCOMPARE(names, QStringList({"English", "French"}));
}

void ManifestParserTest::EveryLocaleRowIsKeptUnderItsTagTheLaterOneWins()
{
    Parsed const parsed = Parse(R"({"available_locales": [{"tag": "enUS", "name": "first"},
        {"tag": "enUS", "name": "second"}, {"name": "nameless"}, 3]})");
    QVERIFY(parsed.Success);
    QCOMPARE(parsed.Manifest.Locales.size(), std::size_t{2});
    QCOMPARE(parsed.Manifest.Locales.at("enUS").Name, QString("second"));
    QCOMPARE(parsed.Manifest.Locales.at("").Tag, QString(""));
    // The row that is no object comes last and overwrites the name.
    QCOMPARE(parsed.Manifest.Locales.at("").Name, QString(""));
}

void ManifestParserTest::ReadsAFileEntry()
{
    Parsed const parsed = ParseFiles(R"({"location": "a/b", "path": "Data/c", "md5": "AbC",
        "flags": 255, "locale": "frFR"})");
    QVERIFY(parsed.Success);
    QCOMPARE(parsed.Manifest.Files.size(), std::size_t{1});
    ApplicationManifestFileEntry const& entry = parsed.Manifest.Files[0];
    QCOMPARE(entry.Location, QString("a/b"));
    QCOMPARE(entry.Path, QString("Data/c"));
    QCOMPARE(entry.Md5, QString("AbC"));
    QCOMPARE(entry.Flags, 255);
    QCOMPARE(entry.Locale, QString("frFR"));
}

void ManifestParserTest::MissingKeysOfAnEntryReadAsEmptyTextsThatAreNotNull()
{
    ApplicationManifestFileEntry const fresh;
    QCOMPARE(fresh.Flags, 0);
    for (QString const& text : {fresh.Location, fresh.Path, fresh.Md5, fresh.Locale})
        QVERIFY(text.isEmpty() && !text.isNull());

    Parsed const parsed =
        ParseFiles(R"({"path": "a"}, {"path": "b", "locale": ""}, "text", null, [])");
    QVERIFY(parsed.Success);
    QCOMPARE(parsed.Manifest.Files.size(), std::size_t{5});
    QVERIFY(parsed.Manifest.Files.back().Path.isEmpty());
    for (ApplicationManifestFileEntry const& entry : parsed.Manifest.Files) {
        QVERIFY(entry.Location.isEmpty() && entry.Md5.isEmpty() && entry.Locale.isEmpty());
        QCOMPARE(entry.Flags, 0);
    }
}

void ManifestParserTest::FlagsAreReadOnlyWhenPresent()
{
    Parsed const parsed = ParseFiles(R"({"path": "a"}, {"path": "b", "flags": 3},
        {"path": "c", "flags": "3"}, {"path": "d", "flags": -1})");
    std::vector<int> flags;
    for (ApplicationManifestFileEntry const& entry : parsed.Manifest.Files)
        flags.push_back(entry.Flags);
    QCOMPARE(flags, (std::vector<int>{0, 3, 0, -1}));
}

void ManifestParserTest::EntriesOfUndeclaredLanguagesAreDroppedSilently()
{
    TestSupport::LogCapture const log;
    Parsed const parsed = ParseFiles(R"({"path": "a", "locale": "frFR"},
        {"path": "b", "locale": "esES"}, {"path": "c", "locale": "frfr"}, {"path": "d"})");
    QVERIFY(parsed.Success);
    QCOMPARE(parsed.Manifest.Files.size(), std::size_t{2});
    QCOMPARE(parsed.Manifest.Files[0].Locale, QString("frFR"));
    QCOMPARE(parsed.Manifest.Files[1].Path, QString("d"));
    QCOMPARE(log.Texts(), QStringList());
}

void ManifestParserTest::EntriesKeepTheirOrderAndTheirDuplicates()
{
    Parsed const parsed = ParseFiles(R"({"path": "z"}, {"path": "a", "md5": "1"}, {"path": "z"},
        {"path": "a", "md5": "2"})");
    QStringList paths;
    for (ApplicationManifestFileEntry const& entry : parsed.Manifest.Files)
        paths += entry.Path;
    QCOMPARE(paths, QStringList({"z", "a", "z", "a"}));
    QCOMPARE(parsed.Manifest.Files[3].Md5, QString("2"));
}

void ManifestParserTest::PlainRowsReadAsOthers_data()
{
    QTest::addColumn<QByteArray>("Rows");
    for (char const* const rows :
         {R"({"path": "a", "location": "b", "md5": "C", "flags": 7, "locale": "enUS"})",
          R"({"path":"a"},{"path":"b"}, {"path":"c","locale":"deDE"} , 5, {"path":"d"})",
          R"({"path": "a\\b\u00e9"}, {"path": "\"[{}]"})",
          R"({"path": "é"}, {"path": "\"[{}]"})",
          R"({"path": "a", "path": "b", "flags": 1, "flags": 2})",
          R"({"path": "a", "more": "b"})",
          R"({}, {"flags": "1"}, {"path": 1}, {"path": null}, {"md5": {"path": "a"}})",
          R"({"path": [{"path": "a"}]}, [{"path": "b"}])",
          "{\"path\": \"a\tb\"}",
          "{\"path\": \"\xef\xbb\xbf"
          "a\"}",
          "{\"path\":\r\n\t\"\xff\"}",
          R"({"flags": 2147483647}, {"flags": 2147483648}, {"flags": -1}, {"flags": 1e2})",
          R"({"flags": 0, "path": "a"}, {"flags": -0}, {"flags": 1.0}, {"flags": 1.5})",
          R"({"flags": 01, "path": "a"})",
          R"({"flags": -01, "path": "a"})",
          R"({"flags": -})",
          R"({"path": "a"},)",
          R"({"path": "a",})",
          R"({"path" "a"})",
          R"({"path": "a"} {})",
          R"({"path": "a"}, {"path)",
          R"({"path": "[{\"path\": \"b\"}]"})"})
        QTest::newRow(rows) << QByteArray(rows);
}

/// With an escape in its keys no row is plain.
void ManifestParserTest::PlainRowsReadAsOthers()
{
    QFETCH(QByteArray, Rows);
    Parsed const plain = ParseFiles(Rows);
    QByteArray const list = RemoteText::Utf8Of('[' + Rows + ']');
    QCOMPARE(plain.Success, QJsonDocument::fromJson(list).isArray());
    for (char const* const key : {"\"path\"", "\"location\"", "\"md5\"", "\"flags\"", "\"locale\""})
        Rows.replace(key, QByteArray(key)
                              .replace('l', "\\u006c")
                              .replace("p", "\\u0070")
                              .replace('m', "\\u006d"));
    Parsed const other = ParseFiles(Rows);
    QCOMPARE(plain.Success, other.Success);
    auto const texts = [](ApplicationManifest const& p_Manifest) {
        QStringList all;
        for (ApplicationManifestFileEntry const& entry : p_Manifest.Files)
            all +=
                {entry.Path, entry.Location, entry.Md5, entry.Locale, QString::number(entry.Flags)};
        return all;
    };
    QCOMPARE(texts(plain.Manifest), texts(other.Manifest));
}

void ManifestParserTest::ReadsTheListOfItsPlatformOnly()
{
    Parsed const other = Parse(R"({"content": {")" + c_OtherKey + R"(": [{"path": "a"}]}})");
    QVERIFY(other.Success);
    QVERIFY(other.Manifest.Files.empty());
    Parsed const own = Parse(R"({"content": {")" + c_OtherKey + R"(": [{"path": "a"}], ")" + c_Key +
                             R"(": [{"path": "b"}]}})");
    QCOMPARE(own.Manifest.Files.size(), std::size_t{1});
    QCOMPARE(own.Manifest.Files[0].Path, QString("b"));
}

void ManifestParserTest::TheSierraListIsReadOnlyOnDemand()
{
#ifdef VARNHOLT_CONTENT_PLATFORM_WIN
    QSKIP("the Windows list has no variant");
#else
    QByteArray const document = R"({"content": {"base_mac": [{"path": "plain"}],
        "base_mac_sierra": [{"path": "sierra"}]}})";
    QCOMPARE(Parse(document, false).Manifest.Files.at(0).Path, QString("plain"));
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    bool const isSierra = QSysInfo::macVersion() > 13; // true elsewhere than on a Mac
    QT_WARNING_POP
    QCOMPARE(Parse(document, true).Manifest.Files.at(0).Path,
             QString(isSierra ? "sierra" : "plain"));
#endif
}

void ManifestParserTest::StreamedContentIsATopLevelList()
{
    Parsed const parsed = Parse("{" + c_Locales + R"(, "streamed_content": [
        {"path": "b", "flags": 128}, {"path": "a"}, {"path": "x", "locale": "deDE"}],
        "content": {"streamed_content": [{"path": "inside"}]}})");
    QVERIFY(parsed.Success);
    QVERIFY(parsed.Manifest.Files.empty());
    QCOMPARE(parsed.Manifest.StreamedFiles.size(), std::size_t{2});
    QCOMPARE(parsed.Manifest.StreamedFiles[0].Path, QString("b"));
    QCOMPARE(parsed.Manifest.StreamedFiles[0].Flags, 128);
}

void ManifestParserTest::WrongTypesBelowTheTopReadAsEmpty()
{
    Parsed const parsed = Parse(R"({"build_id": {}, "build_str": 5, "available_locales": "enUS",
        "content": [], "streamed_content": {"path": "a"}})");
    QVERIFY(parsed.Success);
    QVERIFY(parsed.Manifest.BuildId.isEmpty() && parsed.Manifest.BuildStr.isEmpty());
    QVERIFY(parsed.Manifest.Locales.empty() && parsed.Manifest.Files.empty() &&
            parsed.Manifest.StreamedFiles.empty());
    QVERIFY(Parse(R"({"content": {")" + c_Key + R"(": "a"}})").Manifest.Files.empty());
}

void ManifestParserTest::TheDocumentEndsAtANulByte()
{
    // Every remote text is read so: what follows a NUL byte is never seen.
    QByteArray const whole = R"({"build_id": "id"})";
    QVERIFY(Parse(whole + '\0' + "garbage").Success);
    QByteArray cut = whole;
    cut[10] = '\0';
    bool success = true;
    ApplicationManifest const manifest = ParseApplicationManifest(cut, success, false);
    QVERIFY(!success);
    QVERIFY(manifest.BuildId.isEmpty());
}

void ManifestParserTest::InvalidUtf8ArrivesAsReplacementCharacters()
{
    // A single bad byte in a name must not cost the whole manifest.
    Parsed const parsed = Parse("{\"build_str\": \"a\xff"
                                "b\"}");
    QVERIFY(parsed.Success);
    QCOMPARE(parsed.Manifest.BuildStr, QString("a") + QChar(QChar::ReplacementCharacter) + "b");
}

} // namespace Varnholt::Launcher

VARNHOLT_TEST(Varnholt::Launcher::ManifestParserTest)
#include "tst_ManifestParser.moc"
