#include "Host/Cli/ConfigCommand.hpp"
#include "Host/Cli/SignalWatch.hpp"
#include "Host/Core/Session/HostSession.hpp"
#include "Host/Core/Session/MessageLog.hpp"
#include "Host/Window/Desktop/Desktop.hpp"
#include "Host/Window/Desktop/SingleInstance.hpp"
#include "Host/Window/Main/MainWindow.hpp"
#include "Host/Window/Main/RunText.hpp"
#include "Host/Window/Main/WindowParser.hpp"
#include "Programs/StandardStreams.hpp"

#include <QApplication>
#include <QTextCodec>

#include <cstdlib>

namespace {

using namespace Varnholt::Host;
using namespace Varnholt::Programs;

int Run(Choice p_Given, QString const& p_Modules)
{
    SingleInstance instance(p_Given.Options.SettingsFile);
    if (instance.Begin() == SingleInstance::Outcome::Second)
        return EXIT_SUCCESS;
    QString const server = HostOptions().ContentServer(); // a session leads it elsewhere
    auto const fault = ConfigCommand::TakeEnvironment(p_Given);
    SettingsFile::Values const kept = HostSettings(p_Given.Options.SettingsFile).All();
    Choice choice = p_Given; // and what is kept, where nothing was given
    ConfigCommand::Complete(choice, kept);
    MessageLog const log(choice.LogFile, choice.Options.Names);
    QObject::connect(
        &log, &MessageLog::Logged, &log,
        [](LogEntry const& p_Entry) {
            if (p_Entry.Type == QtCriticalMsg || p_Entry.Type == QtFatalMsg)
                StandardStreams::Write(stderr, p_Entry.Line() + QLatin1Char('\n'));
        },
        Qt::DirectConnection);
    Language language;
    language.Use(WindowSettings::Of(kept).Language);
    MainWindow window(choice.Options, p_Modules, choice.LogFile);
    if (fault)
        window.Tell(RunText::Sentence(*fault));
    Desktop desktop(window, language, p_Given, server);
    QObject::connect(&instance, &SingleInstance::ShowRequested, &desktop, &Desktop::ShowWindow);
    QObject::connect(&window, &MainWindow::Finished, qApp, &QApplication::quit,
                     Qt::QueuedConnection);
    SignalWatch const ends; // what has arrived is kept, whoever ends the program
    QObject::connect(&ends, &SignalWatch::EndRequested, &window, &MainWindow::Quit);
    QApplication::setQuitOnLastWindowClosed(false);
    desktop.Begin(kept);
    return QApplication::exec();
}

/// \param p_Count, p_Arguments without those of Qt
int Start(int p_Count, char** p_Arguments)
{
    constexpr int c_UsageStatus = 2;

    WindowParser parser;
    try {
        Choice const choice = parser.Parse(p_Count, p_Arguments);
        return Run(choice, parser.ModuleFolder());
    } catch (CLI::Success const& help) {
        StandardStreams::Write(stdout, QString::fromStdString(parser.Answer(help)));
        return EXIT_SUCCESS;
    } catch (CLI::ParseError const& error) {
        std::fprintf(stderr, "varnholt-window: %s; \"varnholt-window --help\" lists the options\n",
                     error.what());
        return c_UsageStatus;
    }
}

} // namespace

int main(int p_Count, char** p_Arguments)
{
    StandardStreams::Prepare();
    for (int i = 1; i < p_Count; ++i) // which need no screen
        for (std::string const word : {"-h", "--help", "--version"})
            if (word == p_Arguments[i])
                return Start(p_Count, p_Arguments);
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication::setStyle(QStringLiteral("Fusion")); // others take no colours of a game
    QApplication application(p_Count, p_Arguments);
    QApplication::setApplicationName(QStringLiteral("varnholt-window"));
    QApplication::setDesktopFileName(QStringLiteral("varnholt-window"));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/varnholt-window.png")));
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    int const status = Start(p_Count, p_Arguments);
    if (HostSession::HasLeftModule())
        std::_Exit(status);
    return status;
}
