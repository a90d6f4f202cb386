#include "Files/FileLock.hpp"
#include "Host/Cli/OptionText.hpp"
#include "Host/Core/Failures/ByteText.hpp"
#include "Host/Core/Network/FetchFailure.hpp"
#include "Host/Window/Desktop/Language.hpp"
#include "Launcher/Application/LauncherLocale.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QXmlStreamReader>

namespace Varnholt::TestSupport {

namespace {

/// What stands for something else in a text, in a fixed order.
QStringList Places(QString const& p_Text)
{
    static QRegularExpression const place(QStringLiteral("%[0-9n]|\\{[sd]\\}|--[a-z-]+"));

    QStringList places;
    for (auto found = place.globalMatch(p_Text); found.hasNext();)
        places += found.next().captured();
    places.sort();
    return places;
}

} // namespace

/// The texts of window and host in the launcher's languages.
class TranslationsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void NoTextIsMissing_data();
    void NoTextIsMissing();
    void NothingIsLostInTranslation_data() { NoTextIsMissing_data(); }
    void NothingIsLostInTranslation();
    void TextsAreThoseOfTheLanguage();

private:
    static QString File(QString const& p_Code)
    {
        return QStringLiteral(VARNHOLT_TRANSLATIONS "/varnholt_%1.ts").arg(p_Code);
    }
};

void TranslationsTest::NoTextIsMissing_data()
{
    QTest::addColumn<QString>("code");
    for (Launcher::LauncherLocale const& locale : Launcher::LauncherLocale::Available())
        AddRow(qPrintable(locale.Code), locale.Code);
}

/// English needs its plurals only.
void TranslationsTest::NoTextIsMissing()
{
    QFETCH(QString, code);
    QTemporaryDir const folder;
    QString const copy = folder.filePath("copy.ts");
    QVERIFY(QFile::copy(File(code), copy));
    QStringList arguments{"-silent", "-locations", "none",      "-no-obsolete", "-I",  ".",
                          "Files",   "Host/Cli",   "Host/Core", "Host/Window",  "-ts", copy};
    if (code == "enUS")
        arguments.prepend("-pluralonly");
    QProcess update;
    update.setWorkingDirectory(VARNHOLT_SOURCE_FOLDER);
    update.start("lupdate", arguments);
    QVERIFY(update.waitForFinished());
    QCOMPARE(update.exitCode(), 0);
    QByteArray const updated = ReadFile(copy);
    QVERIFY2(updated == ReadFile(File(code)), "run lupdate, and translate what it finds");
    QVERIFY(!updated.contains("type=\"unfinished\""));
}

void TranslationsTest::NothingIsLostInTranslation()
{
    QFETCH(QString, code);
    QFile file(File(code));
    QVERIFY(file.open(QIODevice::ReadOnly));
    QXmlStreamReader reader(&file);
    QString source;
    int count = 0;
    while (!reader.atEnd()) {
        reader.readNext();
        if (!reader.isStartElement())
            continue;
        if (reader.name() == "source")
            source = reader.readElementText();
        bool const isForm = reader.isStartElement() && reader.name() == "numerusform";
        bool const isText =
            reader.isStartElement() && reader.name() == "translation" && source.count("%n") == 0;
        if (!isForm && !isText)
            continue;
        QString const text = reader.readElementText();
        QVERIFY2(!text.trimmed().isEmpty() || source.trimmed().isEmpty(), qPrintable(source));
        QCOMPARE(Places(text), Places(source));
        QCOMPARE(text.contains('&'), source.contains('&'));
        ++count;
    }
    QVERIFY(count > 5);
}

/// Numbers too, and what is put together from parts.
void TranslationsTest::TextsAreThoseOfTheLanguage()
{
    Host::Language language;
    language.Use("frFR");
    QCOMPARE(Host::ByteText(1536 * 1024), QString("1,5 Mio"));
    QCOMPARE(
        QCoreApplication::translate("Varnholt::Host::ProgressTexts", "%n minute(s)", nullptr, 1),
        QString("1 minute"));
    using Gateway::FetchProblem;
    QCOMPARE(
        Host::CauseText({FetchProblem::Type::Refused, {}, FetchProblem::Cause::Status, 503, "503"}),
        QString("statut HTTP 503"));
    QCOMPARE(Host::OptionText::WhyNotRate("abc").left(5), QString::fromUtf8("« abc"));
    QTemporaryDir const folder;
    FileLock first(folder.filePath("lock"));
    FileLock second(folder.filePath("lock"));
    QCOMPARE(first.Take(), FileLock::Outcome::Taken);
    QCOMPARE(second.Take(), FileLock::Outcome::Held);
    QVERIFY2(second.Holder().contains(", processus "), qPrintable(second.Holder()));
    language.Use("enUS");
    QCOMPARE(Host::ByteText(1536 * 1024), QString("1.5 MiB"));
    QCOMPARE(
        QCoreApplication::translate("Varnholt::Host::ProgressTexts", "%n minute(s)", nullptr, 2),
        QString("2 minutes"));
    QLocale::setDefault(QLocale::c());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::TranslationsTest)
#include "tst_Translations.moc"
