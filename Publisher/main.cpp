#include "Programs/StandardStreams.hpp"
#include "Publisher/Cli/CommandLine.hpp"

#include <QCoreApplication>
#include <QTextCodec>

int main(int p_Count, char* p_Arguments[])
{
    Varnholt::Programs::StandardStreams::Prepare();
    QCoreApplication const application(p_Count, p_Arguments);
    // File names are UTF-8 whatever the locale says: a publishing job often runs in none at all.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    return Varnholt::Publisher::CommandLine().Run(p_Count, p_Arguments);
}
