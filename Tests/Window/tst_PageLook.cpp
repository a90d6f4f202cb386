#include "Host/Window/Desktop/Language.hpp"
#include "Host/Window/Pages/GamePage.hpp"
#include "Host/Window/Style/ElidedLabel.hpp"
#include "Host/Window/Style/WindowPalette.hpp"
#include "Launcher/Application/LauncherLocale.hpp"
#include "Tests/Support/LoadedPlugin.hpp"
#include "Tests/Support/TestMain.hpp"
#include "Tests/Window/ClippedParts.hpp"
#include "Tests/Window/LargerFont.hpp"
#include "Tests/Window/PageStates.hpp"
#include "Tests/Window/WindowGame.hpp"

#include <QAbstractButton>
#include <QLabel>
#include <QPushButton>
#include <QToolButton>

namespace Varnholt::TestSupport {

using Host::PagePalette;

/// What a page looks like in each state, on the real picture and on the worst ones.
class PageLookTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup() { QLocale::setDefault(QLocale::c()); }

    void TextsCanBeReadOnAnyPicture_data();
    void TextsCanBeReadOnAnyPicture();
    void EachThemeGivesColorsThatCanBeRead_data();
    void EachThemeGivesColorsThatCanBeRead();
    void NothingIsClipped_data();
    void NothingIsClipped();

private:
    Host::ModuleCard Card;
};

namespace {

/// The least contrast of a text to what is behind it.
double ContrastOn(QImage const& p_Ground, QRect const& p_Area, QColor const& p_Text)
{
    double least = 21;
    for (int y = p_Area.top(); y <= p_Area.bottom(); ++y)
        for (int x = p_Area.left(); x <= p_Area.right(); ++x)
            least = std::min(least, PagePalette::Contrast(p_Text, p_Ground.pixelColor(x, y)));
    return least;
}

QImage Checkers()
{
    QImage image(64, 64, QImage::Format_RGB32);
    for (int y = 0; y < 64; ++y)
        for (int x = 0; x < 64; ++x)
            image.setPixelColor(x, y, (x / 4 + y / 4) % 2 == 0 ? Qt::white : Qt::black);
    return image;
}

QRect AreaIn(QWidget const& p_Page, QWidget const& p_Part)
{
    return {p_Part.mapTo(&p_Page, QPoint()), p_Part.size()};
}

QString NameOf(QWidget const& p_Part)
{
    return QString::fromLatin1(p_Part.metaObject()->className()) + ' ' + p_Part.objectName();
}

} // namespace

void PageLookTest::initTestCase()
{
    Card = CardOf(LoadedPlugin::Path());
    QVERIFY(!Card.Background.isNull() && !Card.Icon.isNull() && !Card.SelectedIcon.isNull());
    QCOMPARE(Card.Palette.Ground, QColor("#09111C"));
}

void PageLookTest::TextsCanBeReadOnAnyPicture_data()
{
    QTest::addColumn<QImage>("Picture");
    QImage white(64, 64, QImage::Format_RGB32);
    white.fill(Qt::white);
    QImage black = white;
    black.fill(Qt::black);
    AddRow("the module's", Card.Background);
    AddRow("white", white);
    AddRow("black", black);
    AddRow("checkers", Checkers());
}

void PageLookTest::TextsCanBeReadOnAnyPicture()
{
    QFETCH(QImage, Picture);
    Host::ModuleCard card = Card;
    card.Background = Picture;
    for (auto const& state : PageStates::All()) {
        Host::GamePage page(card);
        page.resize(944, 640);
        page.Show(state.second);
        page.show();
        struct Text {
            QWidget* Part;
            QColor Color;
        };
        std::vector<Text> texts;
        for (auto* const label : page.findChildren<QLabel*>())
            if (label->isVisible() && !label->text().isEmpty())
                texts.push_back({label, label->palette().color(label->foregroundRole())});
        for (auto* const button : page.findChildren<QAbstractButton*>())
            if (button->isVisible() && !button->text().isEmpty())
                texts.push_back({button, button->palette().color(QPalette::ButtonText)});
        QVERIFY(texts.size() >= 3);
        for (Text const& text : texts) { // leaves its ground and its place
            text.Part->setFixedSize(text.Part->size());
            if (auto* const label = qobject_cast<QLabel*>(text.Part))
                label->clear();
            else
                static_cast<QAbstractButton*>(text.Part)->setText({});
        }
        QImage const ground = page.grab().toImage();
        for (Text const& text : texts) {
            QRect const inner = AreaIn(page, *text.Part).adjusted(4, 4, -4, -4);
            double const contrast = ContrastOn(ground, inner, text.Color);
            QVERIFY2(contrast >= PagePalette::c_LeastContrast,
                     qPrintable(QString("%1, %2: %3 in %4")
                                    .arg(state.first, NameOf(*text.Part))
                                    .arg(contrast)
                                    .arg(text.Color.name())));
        }
    }
}

void PageLookTest::EachThemeGivesColorsThatCanBeRead_data()
{
    QTest::addColumn<QString>("Theme");
    for (char const* const theme : {"3,9,14", "128,128,128", "200,40,40", "255,255,255", "0,0,0",
                                    "90,140,60", "", "300,1,1", "1,2", "red"})
        QTest::newRow(theme) << QString(theme);
}

void PageLookTest::EachThemeGivesColorsThatCanBeRead()
{
    QFETCH(QString, Theme);
    PagePalette const palette = PagePalette::Of(Theme, "no color", {});
    QPalette const window = Host::WindowPalette(palette);
    for (auto const& [text, ground] : {std::pair(QPalette::WindowText, QPalette::Window),
                                       std::pair(QPalette::Text, QPalette::Base),
                                       std::pair(QPalette::PlaceholderText, QPalette::Base),
                                       std::pair(QPalette::ButtonText, QPalette::Button),
                                       std::pair(QPalette::ToolTipText, QPalette::ToolTipBase),
                                       std::pair(QPalette::HighlightedText, QPalette::Highlight)})
        QVERIFY2(PagePalette::Contrast(window.color(text), window.color(ground)) >=
                     PagePalette::c_LeastContrast,
                 qPrintable(window.color(text).name() + " on " + window.color(ground).name()));
    for (QColor const& behind : {QColor(Qt::white), QColor(Qt::black), QColor(128, 128, 128)}) {
        QColor const panel = PagePalette::Over(palette.Panel, behind);
        for (QColor const& text : {palette.Text, palette.Quiet, palette.Warning})
            QVERIFY2(PagePalette::Contrast(text, panel) >= PagePalette::c_LeastContrast,
                     qPrintable(text.name() + " on " + panel.name()));
    }
    QVERIFY(PagePalette::Contrast(palette.AccentText, palette.Accent) >=
            PagePalette::c_LeastContrast);
}

void PageLookTest::NothingIsClipped_data()
{
    QTest::addColumn<QSize>("Size"); // of the page: the column of games is 80 wide
    QTest::addColumn<QString>("Code");
    QTest::addColumn<int>("FontPercent"); // that the user has chosen
    for (auto const& language : Launcher::LauncherLocale::Available()) {
        QString const& code = language.Code;
        AddRow(qPrintable(code + " at 1024 x 640"), QSize(944, 640), code, 100);
        AddRow(qPrintable(code + " at 1600 x 900"), QSize(1520, 900), code, 100);
        AddRow(qPrintable(code + " at 1024 x 640, 125 %"), QSize(739, 512), code, 100);
        AddRow(qPrintable(code + " at 1024 x 640, 200 %"), QSize(432, 320), code, 100);
        AddRow(qPrintable(code + " in large letters"), QSize(944, 640), code, 200);
    }
}

void PageLookTest::NothingIsClipped()
{
    QFETCH(QSize, Size);
    QFETCH(QString, Code);
    QFETCH(int, FontPercent);
    LargerFont const font(FontPercent);
    Host::Language language;
    language.Use(Code);
    for (auto const& state : PageStates::All()) {
        Host::GamePage page(Card);
        page.resize(Size);
        page.Show(state.second);
        page.ToggleHistory();
        page.show();
        QTest::qWait(0);
        QCOMPARE(page.size(), Size); // it has not grown
        // The letters are as large as the user wants them, and the large button is in sight.
        auto const& primary = *page.findChild<QPushButton*>("primary");
        QCOMPARE(primary.font().pixelSize(),
                 QFontInfo(QApplication::font()).pixelSize() * 167 / 100);
        QCOMPARE(primary.visibleRegion().boundingRect(), primary.rect());
        for (auto const* const small : primary.parentWidget()->findChildren<QToolButton*>())
            QVERIFY(!small->isVisible() || small->height() == primary.height());
        QStringList const clipped = ClippedParts(page);
        QVERIFY2(clipped.isEmpty(), qPrintable(state.first + (": " + clipped.join('\n'))));
    }
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::PageLookTest)
#include "tst_PageLook.moc"
