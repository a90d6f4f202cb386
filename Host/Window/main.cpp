#include "Host/Core/Session/HostSession.hpp"
#include "Host/Window/Main/MainWindow.hpp"
#include "Programs/StandardStreams.hpp"

#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QTextCodec>

#include <cstdlib>

namespace {

using namespace Varnholt::Host;

QString Absolute(QString const& p_Path)
{
    return p_Path.isEmpty() ? p_Path : QFileInfo(p_Path).absoluteFilePath();
}

int Run(QApplication& p_Application)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Installs, updates and starts games."));
    parser.addHelpOption();
    parser.addVersionOption();
    QCommandLineOption const modules(QStringLiteral("modules"),
                                     QStringLiteral("Folder of the modules."),
                                     QStringLiteral("FOLDER"));
    QCommandLineOption const settings(QStringLiteral("settings"), QStringLiteral("Settings file."),
                                      QStringLiteral("FILE"));
    QCommandLineOption const server(QStringLiteral("content-url"),
                                    QStringLiteral("Content server."), QStringLiteral("URL"));
    parser.addOptions({modules, settings, server});
    parser.process(p_Application);

    HostOptions options;
    options.SettingsFile = Absolute(parser.value(settings));
    options.ContentUrl = parser.value(server);
    QString const folder = parser.isSet(modules)
                               ? Absolute(parser.value(modules))
                               : QFileInfo(HostOptions::DefaultModuleFile()).absolutePath();
    MainWindow window(options, folder, {});
    QObject::connect(&window, &MainWindow::Finished, &p_Application, &QApplication::quit,
                     Qt::QueuedConnection);
    QApplication::setQuitOnLastWindowClosed(false);
    window.show();
    window.Begin();
    return QApplication::exec();
}

} // namespace

int main(int p_Count, char** p_Arguments)
{
    Varnholt::Programs::StandardStreams::Prepare();
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QApplication application(p_Count, p_Arguments);
    QApplication::setApplicationName(QStringLiteral("varnholt-window"));
    QApplication::setApplicationVersion(QStringLiteral(VARNHOLT_VERSION));
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    int const status = Run(application);
    if (HostSession::HasLeftModule())
        std::_Exit(status);
    return status;
}
