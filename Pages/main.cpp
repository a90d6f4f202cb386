#include "Host/Cli/CommandParser.hpp"
#include "Host/Window/Main/WindowParser.hpp"
#include "Pages/Pieces.hpp"
#include "Publisher/Cli/CommandLine.hpp"

#include <QDir>
#include <QSaveFile>

#include <cstdio>

using namespace Varnholt;
using namespace Varnholt::Pages;

namespace {

/// \return empty: there is no such program
Pieces PiecesFor(QString const& p_Program)
{
    Host::CommandParser const host;
    Host::WindowParser const window;
    Publisher::CommandLine const publisher;
    if (p_Program == QLatin1String("varnholt-publish"))
        return PiecesOf(publisher.Model());
    if (p_Program != QLatin1String("varnholt-host") &&
        p_Program != QLatin1String("varnholt-window"))
        return {};
    Pieces pieces =
        PiecesOf(p_Program.endsWith(QLatin1String("host")) ? host.Model() : window.Model());
    pieces.insert(HostPieces());
    return pieces;
}

/// \throws std::runtime_error
void Write(QString const& p_Template, QString const& p_File, Pieces const& p_Pieces)
{
    QFile source(p_Template);
    QSaveFile file(p_File);
    if (!source.open(QIODevice::ReadOnly))
        throw std::runtime_error(qPrintable(source.errorString()));
    QByteArray const page = Filled(QString::fromUtf8(source.readAll()), p_Pieces).toUtf8();
    if (!QDir().mkpath(QFileInfo(p_File).absolutePath()) || !file.open(QIODevice::WriteOnly) ||
        file.write(page) < 0 || !file.commit())
        throw std::runtime_error(qPrintable(file.errorString()));
}

} // namespace

/// Makes pages about a program of templates.
int main(int p_Count, char** p_Arguments)
{
    QStringList arguments;
    for (int i = 1; i < p_Count; ++i)
        arguments += QFile::decodeName(p_Arguments[i]);
    Pieces const pieces = PiecesFor(arguments.value(0));
    if (pieces.isEmpty() || arguments.size() % 2 == 0) {
        std::fputs("usage: varnholt-pages PROGRAM [TEMPLATE FILE]...\n", stderr);
        return 2;
    }
    for (int i = 1; i < arguments.size(); i += 2) {
        try {
            Write(arguments[i], arguments[i + 1], pieces);
        } catch (std::runtime_error const& error) {
            std::fprintf(stderr, "varnholt-pages: the file %s cannot be made of %s: %s\n",
                         p_Arguments[i + 2], p_Arguments[i + 1], error.what());
            return 1;
        }
    }
    return 0;
}
