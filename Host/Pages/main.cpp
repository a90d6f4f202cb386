#include "Host/Pages/BashCompletion.hpp"
#include "Host/Pages/FishCompletion.hpp"
#include "Host/Pages/HostModel.hpp"
#include "Host/Pages/ManPage.hpp"
#include "Host/Pages/ZshCompletion.hpp"

#include <QDir>
#include <QSaveFile>

#include <cstdio>

using namespace Varnholt::Host::Pages;

/// Writes the pages about varnholt-host to the files that are named: the manual page, then the
/// completions of bash, zsh and fish.
int main(int p_Count, char** p_Arguments)
{
    using Writer = QString (*)(ProgramModel const&);
    constexpr Writer c_Writers[] = {ManPage, BashCompletion, ZshCompletion, FishCompletion};

    if (p_Count != 1 + static_cast<int>(std::size(c_Writers))) {
        std::fputs("usage: varnholt-host-pages MAN BASH ZSH FISH\n", stderr);
        return 2;
    }
    ProgramModel const model = HostModel();
    for (Writer const write : c_Writers) {
        QString const name = QFile::decodeName(*++p_Arguments);
        QSaveFile file(name);
        if (QDir().mkpath(QFileInfo(name).absolutePath()) && file.open(QIODevice::WriteOnly) &&
            file.write(write(model).toUtf8()) >= 0 && file.commit())
            continue;
        std::fprintf(stderr, "varnholt-host-pages: the file %s cannot be written: %s\n",
                     *p_Arguments, qPrintable(file.errorString()));
        return 1;
    }
    return 0;
}
