#include "Host/Window/Desktop/Language.hpp"
#include "Host/Window/Dialogs/InstallDialog.hpp"
#include "Host/Window/Dialogs/LoginDialog.hpp"
#include "Host/Window/Dialogs/SettingsDialog.hpp"
#include "Host/Window/Dialogs/UninstallDialog.hpp"
#include "Host/Window/Pages/GamePage.hpp"
#include "Host/Window/Pages/PageMenu.hpp"
#include "Launcher/Application/LauncherLocale.hpp"
#include "Tests/Support/TestMain.hpp"
#include "Tests/Window/ClippedParts.hpp"
#include "Tests/Window/DialogGame.hpp"
#include "Tests/Window/LargerFont.hpp"
#include "Tests/Window/PageStates.hpp"

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QLabel>
#include <QLocale>
#include <QProgressBar>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>

#include <set>
#include <utility>

namespace Varnholt::TestSupport {

/// The window for those who use no mouse, or see no screen: every control has a name, is reached by
/// the Tab key in the order in which it stands, and by a letter or key of its own.
class WindowAccessTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { QLocale::setDefault(QLocale::c()); }

    void EveryControlIsWithinReach_data();
    void EveryControlIsWithinReach();

private:
    /// What is wrong with a window, lines.
    static QStringList FaultsOf(QWidget& p_Window);
    static QStringList MenuFaults(QMenu& p_Menu);
    /// By the Tab key, in that order.
    static std::vector<QWidget*> Reached(QWidget& p_Window);
};

void WindowAccessTest::EveryControlIsWithinReach_data()
{
    QTest::addColumn<QString>("code");
    QTest::addColumn<int>("fontPercent");
    for (Launcher::LauncherLocale const& locale : Launcher::LauncherLocale::Available()) {
        AddRow(qPrintable(locale.Code), locale.Code, 100);
        AddRow(qPrintable(locale.Code + " in large letters"), locale.Code, 200);
    }
}

std::vector<QWidget*> WindowAccessTest::Reached(QWidget& p_Window)
{
    std::vector<QWidget*> reached;
    for (QWidget* next = p_Window.nextInFocusChain(); next != &p_Window;
         next = next->nextInFocusChain())
        if (next->isVisible() && next->isEnabled() && (next->focusPolicy() & Qt::TabFocus) != 0 &&
            qobject_cast<QAbstractSpinBox*>(next->parentWidget()) == nullptr)
            reached.push_back(next);
    return reached;
}

QStringList WindowAccessTest::MenuFaults(QMenu& p_Menu)
{
    QStringList faults;
    std::set<QString> keys;
    QAccessibleInterface* const access = QAccessible::queryAccessibleInterface(&p_Menu);
    for (int i = 0; i < p_Menu.actions().size(); ++i) {
        QAction const* const action = p_Menu.actions()[i];
        QString const key = QKeySequence::mnemonic(action->text()).toString();
        bool const isNamed = access->child(i)->text(QAccessible::Name) ==
                             QString(action->text()).remove(QLatin1Char('&'));
        if (!action->isSeparator() && (key.isEmpty() || !keys.insert(key).second || !isNamed))
            faults += QStringLiteral("menu: %1").arg(action->text());
    }
    return faults;
}

QStringList WindowAccessTest::FaultsOf(QWidget& p_Window)
{
    QStringList faults;
    std::set<QString> keys;
    auto const claim = [&](QString const& p_Text, QKeySequence const& p_Key) {
        if (!p_Key.isEmpty() && !keys.insert(p_Key.toString()).second)
            faults += QStringLiteral("%1 has a letter that another one has").arg(p_Text);
    };
    for (QLabel const* const label : p_Window.findChildren<QLabel*>())
        if (label->isVisible() && label->buddy() != nullptr)
            claim(label->text(), QKeySequence::mnemonic(label->text()));
    for (QAbstractButton const* const button : p_Window.findChildren<QAbstractButton*>())
        if (button->isVisible()) {
            claim(button->text(), button->shortcut());
            if (button->isEnabled() && button->shortcut().isEmpty())
                faults += QStringLiteral("%1 has no letter").arg(button->text());
            if ((button->focusPolicy() & Qt::TabFocus) == 0)
                faults += QStringLiteral("%1 is passed by").arg(button->text());
        }
    for (QProgressBar const* const bar : p_Window.findChildren<QProgressBar*>())
        if (bar->accessibleName().isEmpty())
            faults += QStringLiteral("a bar has no name");
    int height = -1;
    Host::ScrollColumn const* column = nullptr;
    for (QWidget* const widget : Reached(p_Window)) {
        QAccessibleInterface* const access = QAccessible::queryAccessibleInterface(widget);
        QString const kind = QString::fromLatin1(widget->metaObject()->className());
        if (access == nullptr || access->text(QAccessible::Name).trimmed().isEmpty())
            faults += QStringLiteral("%1 has no name").arg(kind);
        Host::ScrollColumn const* const before = std::exchange(column, ColumnAround(*widget));
        if (before != column)
            height = -1; // what is scrolled may reach below what follows it
        int const top = widget->mapTo(&p_Window, QPoint(0, widget->height())).y();
        if (top < height - widget->height())
            faults += QStringLiteral("%1 is reached after what stands below").arg(kind);
        height = top;
    }
    return faults;
}

void WindowAccessTest::EveryControlIsWithinReach()
{
    QFETCH(QString, code);
    QFETCH(int, fontPercent);
    LargerFont const font(fontPercent);
    DialogGame game;
    game.AddFiles().Publish().PutInstalled();
    game.Put("mine.txt", "mine");
    game.Options.FreeBytes = [](QString const&) { return qint64(1) << 40; };
    QVERIFY(game.Open());
    Host::Language language;
    language.Use(code);
    Host::LoginStore store("app", "http://a/", game.Base + "other.ini");

    auto const check = [&](QDialog* p_Dialog) {
        game.Show(p_Dialog);
        // Once what it asks is answered.
        QVERIFY(game.WaitUntil([&] { return Reached(*p_Dialog).size() > 3; }));
        QStringList const faults = FaultsOf(*p_Dialog);
        QVERIFY2(faults.isEmpty(), qPrintable(p_Dialog->objectName() + ": " + faults.join('\n')));
        // Once what came latest is laid out.
        QStringList clipped;
        bool const isReadable =
            QTest::qWaitFor([&] { return (clipped = ClippedParts(*p_Dialog)).isEmpty(); });
        QVERIFY2(isReadable, qPrintable(p_Dialog->objectName() + ": " + clipped.join('\n')));
        QVERIFY(QRect(QPoint(), p_Dialog->screen()->availableSize()).contains(p_Dialog->rect()));
        if (fontPercent == 100) // with room for all of it
            QCOMPARE(p_Dialog->findChild<QScrollArea*>()->verticalScrollBar()->maximum(), 0);
    };
    check(new Host::InstallDialog(game.Controller(), game.Base));
    check(new Host::UninstallDialog(game.Controller()));
    check(new Host::LoginDialog(store, "Game", {"me", "secret", false}));
    check(new Host::SettingsDialog({}, "http://a/", true));

    for (auto const& state : PageStates::All()) {
        Host::GamePage page(Host::ModuleCard{});
        page.Show(state.second);
        page.show();
        QStringList const faults = FaultsOf(page) + MenuFaults(page.Menu());
        QVERIFY2(faults.isEmpty(), qPrintable(state.first + (": " + faults.join('\n'))));
    }
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::WindowAccessTest)
#include "tst_WindowAccess.moc"
