#include "Host/Window/Main/RunText.hpp"
#include "Host/Window/Pages/GamePage.hpp"
#include "Host/Window/Pages/Remedy.hpp"
#include "Tests/Support/TestMain.hpp"
#include "Tests/Window/PageStates.hpp"

#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QSignalSpy>
#include <QToolButton>

#include <set>

Q_DECLARE_METATYPE(Varnholt::Host::FailureKind)

namespace Varnholt::TestSupport {

using Host::FailureKind;
using Host::PageCommand;

class PageTroubleTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void EveryFailureIsToldWithTheButtonOfItsRemedy_data();
    void EveryFailureIsToldWithTheButtonOfItsRemedy();
    void FilesThatWereGivenUpAreListedWhenAskedFor();
    void AWaitIsToldWithoutButtonsAndGoesByItself();
    void AReadProblemGoes();

private:
    static QList<QAbstractButton*> ButtonsOf(QWidget const& p_Part);
};

/// Those that can be seen.
QList<QAbstractButton*> PageTroubleTest::ButtonsOf(QWidget const& p_Part)
{
    QList<QAbstractButton*> visible;
    for (auto* const button : p_Part.findChildren<QPushButton*>())
        if (button->isVisible())
            visible += button;
    return visible;
}

void PageTroubleTest::EveryFailureIsToldWithTheButtonOfItsRemedy_data()
{
    QTest::addColumn<FailureKind>("Kind");
    for (FailureKind const kind : Host::Failure::Kinds())
        QTest::newRow(qPrintable(PageStates::FailureOf(kind).Identifier())) << kind;
}

void PageTroubleTest::EveryFailureIsToldWithTheButtonOfItsRemedy()
{
    QFETCH(FailureKind, Kind);
    Host::Failure const failure = PageStates::FailureOf(Kind);
    Host::GamePage page({});
    page.Show(PageStates::Failed(failure));
    page.resize(900, 600);
    page.show();
    auto const& strip = *page.findChild<QWidget*>("strip");
    QVERIFY(strip.isVisible());
    QCOMPARE(strip.findChild<QLabel*>("stripTitle")->text(), Host::RunText::Sentence(failure));
    Host::Remedy const remedy = Host::Remedy::Of(failure);
    for (QString const word : {"--", "\"update\"", "\"repair\"", "\"verify\"", "\"install\""})
        QVERIFY2(!remedy.Text.contains(word), qPrintable(remedy.Text));
    bool isTold = false;
    for (auto const* const label : strip.findChildren<QLabel*>())
        isTold = isTold || (label->isVisible() && label->text() == remedy.Text);
    QVERIFY(isTold);

    std::set<QChar> mnemonics;
    for (auto* const button : ButtonsOf(page))
        if (int const mark = button->text().indexOf('&'); mark >= 0)
            QVERIFY2(mnemonics.insert(button->text().at(mark + 1).toUpper()).second,
                     qPrintable(button->text()));
    auto const buttons = ButtonsOf(strip);
    QCOMPARE(static_cast<std::size_t>(buttons.size()), remedy.Commands.size());
    QSignalSpy const requests(&page, &Host::GamePage::Requested);
    buttons.first()->click();
    QCOMPARE(requests.size(), 1);
    QCOMPARE(requests.first().first().value<PageCommand>(), remedy.Commands.front());
}

void PageTroubleTest::FilesThatWereGivenUpAreListedWhenAskedFor()
{
    Host::GamePage page({});
    Host::GameState state = PageStates::Failed(PageStates::FailureOf(FailureKind::FilesGivenUp));
    state.GivenUp.front().Problem = PageStates::FailureOf(FailureKind::FileUnwritable);
    page.Show(state);
    page.show();
    auto const& strip = *page.findChild<QWidget*>("strip");
    auto const& list = *strip.findChild<QListWidget*>();
    QVERIFY(!list.isVisible());
    ButtonsOf(strip).last()->click();
    QVERIFY(list.isVisible());
    QCOMPARE(list.count(), 1);
    QVERIFY(list.item(0)->text().startsWith("Data/base.MPQ: the file "));
    page.Show(state); // what is open stays so
    QVERIFY(list.isVisible());
    state.GivenUp.clear();
    page.Show(state);
    QVERIFY(!list.isVisible());
    QTRY_COMPARE(ButtonsOf(strip).size(), 1);
}

void PageTroubleTest::AWaitIsToldWithoutButtonsAndGoesByItself()
{
    Host::GamePage page({});
    Host::GameState state =
        PageStates::Working(Host::RunRequest::Type::Update, Host::RunPhase::WaitingToRetry);
    Host::ServerWait wait;
    wait.Cause = "connection refused";
    wait.Attempt = 2;
    state.Snapshot.Wait = wait;
    page.Show(state);
    page.show();
    auto const& strip = *page.findChild<QWidget*>("strip");
    QVERIFY(strip.isVisible());
    QCOMPARE(strip.findChild<QLabel*>("stripTitle")->text(), QString("Connection refused"));
    QCOMPARE(ButtonsOf(strip).size(), 0);
    QVERIFY(!strip.findChild<QToolButton*>()->isVisible());
    state.Snapshot.Wait.reset();
    page.Show(state);
    QVERIFY(!strip.isVisible());
}

void PageTroubleTest::AReadProblemGoes()
{
    Host::GamePage page({});
    page.Show(PageStates::Failed(PageStates::FailureOf(FailureKind::DiskFull)));
    page.show();
    auto const& strip = *page.findChild<QWidget*>("strip");
    QSignalSpy const read(&page, &Host::GamePage::ProblemRead);
    strip.findChild<QToolButton*>()->click();
    QCOMPARE(read.size(), 1);
    page.Tell("A sentence of the window's own.");
    QVERIFY(strip.findChild<QLabel*>("stripTitle")->text().startsWith("A sentence"));
    strip.findChild<QToolButton*>()->click();
    QCOMPARE(read.size(), 1);
    QVERIFY(strip.findChild<QLabel*>("stripTitle")->text().startsWith("The volume"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::PageTroubleTest)
#include "tst_PageTrouble.moc"
