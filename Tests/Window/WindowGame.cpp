#include "Tests/Window/WindowGame.hpp"

#include "Host/Core/Settings/HostSettings.hpp"
#include "Host/Window/Pages/GamePage.hpp"
#include "Tests/Support/LoadedPlugin.hpp"
#include "Tests/Support/TestHost.hpp"

#include <QDir>
#include <QLabel>
#include <QtTest>

namespace Varnholt::TestSupport {

Host::ModuleCard CardOf(QString const& p_ModuleFile)
{
    Host::ModuleSurvey survey;
    Host::ModuleCard card;
    QObject context;
    QObject::connect(&survey, &Host::ModuleSurvey::Found, &context,
                     [&](Host::ModuleCard const& p_Card) { card = p_Card; });
    survey.Look({p_ModuleFile});
    if (!QTest::qWaitFor([&] { return !card.File.isEmpty(); }, TestHost::c_Timeout))
        qFatal("%s is no module", qPrintable(p_ModuleFile));
    return card;
}

WindowHands::WindowHands(HostGame& p_Game)
    : Game(p_Game)
    , Modules(p_Game.Base + QStringLiteral("modules/"))
{
    constexpr int c_ShortMilliseconds = 5;

    QDir().mkpath(Modules);
    DropModule(LoadedPlugin::Path());
    Options.SettingsFile = Game.SettingsFile;
    Options.ContentUrl = Game.Server.BaseUrl();
    Options.RetryPauseMilliseconds = c_ShortMilliseconds;
    Options.WatchMilliseconds = c_ShortMilliseconds;
    Options.Flush = [](QString const&) {}; // everybody's files would be waited for
}

WindowHands::~WindowHands()
{
    Close();
}

void WindowHands::Make()
{
    Opened = std::make_unique<Host::MainWindow>(Options, Modules, QString());
    HasEnded = false;
    QObject::connect(Opened.get(), &Host::MainWindow::Finished, Opened.get(),
                     [this] { HasEnded = true; });
}

void WindowHands::Open()
{
    Make();
    Opened->show();
    Opened->Begin();
    WaitForGame();
}

void WindowHands::OpenOnDesktop(bool p_HasTray)
{
    auto const yes = [] { return true; };
    auto const no = [] { return false; };

    Make();
    Host::Choice given;
    given.Options = Options;
    Around = std::make_unique<Host::Desktop>(*Opened, Texts, given, Options.ContentUrl,
                                             p_HasTray ? Host::Desktop::HasTray(yes) : no);
    Around->Begin(Host::HostSettings(Options.SettingsFile).All());
    WaitForGame();
}

void WindowHands::WaitForGame()
{
    if (!WaitUntil([this] { return State().Status.has_value() || State().Problem.has_value(); }))
        qFatal("the window does not open");
}

void WindowHands::Close()
{
    if (!Opened)
        return;
    Opened->Quit();
    if (!WaitUntil([this] { return HasEnded; }))
        qFatal("the window does not end");
    Around.reset();
    Opened.reset();
}

QPushButton& WindowHands::PrimaryButton()
{
    return *Page().findChild<QPushButton*>(QStringLiteral("primary"));
}

QString WindowHands::Primary()
{
    return Opened->Page() == nullptr ? QString() : PrimaryButton().text().remove(QLatin1Char('&'));
}

QAbstractButton& WindowHands::Button(QString const& p_Text)
{
    for (auto* const button : Page().findChildren<QAbstractButton*>())
        if (button->isVisible() && (button->text().remove(QLatin1Char('&')) == p_Text ||
                                    button->accessibleName() == p_Text))
            return *button;
    qFatal("there is no button \"%s\"", qPrintable(p_Text));
}

QString WindowHands::Text(char const* p_Name)
{
    auto const* const label = Page().findChild<QLabel*>(QLatin1String(p_Name));
    return label != nullptr && label->isVisible() ? label->text() : QString();
}

void WindowHands::Install()
{
    Host::RunRequest request;
    request.Kind = Host::RunRequest::Type::Install;
    request.Argument = Game.Folder;
    Controller().Start(request);
}

void WindowHands::DropModule(QString const& p_ModuleFile)
{
    if (!QFile::link(p_ModuleFile, Modules + QFileInfo(p_ModuleFile).fileName()))
        qFatal("%s cannot be linked to", qPrintable(p_ModuleFile));
}

bool WindowHands::WaitUntil(std::function<bool()> const& p_Condition)
{
    return QTest::qWaitFor(p_Condition, TestHost::c_Timeout);
}

bool WindowHands::WaitForPrimary(QString const& p_Text)
{
    return WaitUntil([&] { return Primary() == p_Text; });
}

} // namespace Varnholt::TestSupport
