#include "Host/Window/Desktop/Language.hpp"
#include "Tests/Support/ScopedVariable.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QLocale>

namespace Varnholt::TestSupport {

using Host::Language;

/// Which language the program has.
class WindowLanguageTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QLocale::setDefault(QLocale::c()); }

    void TheChosenOneIsUsed();
    void TheSystemsIsUsedWhenNoneIsChosen_data();
    void TheSystemsIsUsedWhenNoneIsChosen();
};

void WindowLanguageTest::TheChosenOneIsUsed()
{
    Language language;
    language.Use("itIT");
    QCOMPARE(language.Code(), QString("itIT"));
    QCOMPARE(QLocale().language(), QLocale::Italian);
    language.Use("esES");
    QCOMPARE(language.Code(), QString("esES"));
    QCOMPARE(QLocale().toString(1.5), QString("1,5"));
}

void WindowLanguageTest::TheSystemsIsUsedWhenNoneIsChosen_data()
{
    QTest::addColumn<QByteArray>("system");
    QTest::addColumn<QString>("code");
    AddRow("French", QByteArray("fr_CA.UTF-8"), QString("frFR"));
    AddRow("one that is not known", QByteArray("ja_JP.UTF-8"), QString("enUS"));
}

void WindowLanguageTest::TheSystemsIsUsedWhenNoneIsChosen()
{
    QFETCH(QByteArray, system);
    ScopedVariable const all("LC_ALL", system);
    ScopedVariable const list("LANGUAGE", "");
    Language language;
    language.Use("xxXX");
    QTEST(language.Code(), "code");
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::WindowLanguageTest)
#include "tst_WindowLanguage.moc"
