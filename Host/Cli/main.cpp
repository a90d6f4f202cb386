#include "Host/Cli/CommandLine.hpp"
#include "Host/Core/Session/HostSession.hpp"
#include "Programs/StandardStreams.hpp"

#include <QCoreApplication>
#include <QTextCodec>

#include <cstdlib>

int main(int p_Count, char** p_Arguments)
{
    Varnholt::Programs::StandardStreams::Prepare();
    QCoreApplication const application(p_Count, p_Arguments);
    // File names are UTF-8 wherever this runs, also where the locale says nothing of the kind.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    int const status = Varnholt::Host::RunCommandLine(p_Count, p_Arguments);
    if (Varnholt::Host::HostSession::HasLeftModule())
        std::_Exit(status);
    return status;
}
