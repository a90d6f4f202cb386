#include <Host/Core/Session/HostSession.hpp>

#include <QCoreApplication>

#include <cstdio>

/// Tells the name of a module's game: embedding MODULE SETTINGS-FILE
int main(int p_Count, char** p_Arguments)
{
    QCoreApplication const program(p_Count, p_Arguments);
    Varnholt::Host::HostOptions options;
    options.ModuleFile = program.arguments().value(1);
    options.SettingsFile = program.arguments().value(2);
    Varnholt::Host::HostSession session(options);
    QObject::connect(&session, &Varnholt::Host::HostSession::Opened, &session,
                     [](Varnholt::Host::ModuleInfo const& p_Info) {
                         std::puts(qPrintable(p_Info.Name));
                         QCoreApplication::exit(EXIT_SUCCESS);
                     });
    QObject::connect(&session, &Varnholt::Host::HostSession::OpenFailed, &session,
                     [] { QCoreApplication::exit(EXIT_FAILURE); });
    session.Open();
    return QCoreApplication::exec();
}
