#include "Launcher/Helper/CHMOD.hpp"

#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <sstream>
#include <string>

namespace Varnholt::Launcher::Helper {

namespace {

/// A path for use between double quotes: there the shell still reads these four characters.
std::string EscapedForDoubleQuotes(char const* p_Path)
{
    std::string escaped;
    for (char const* c = p_Path; *c != '\0'; ++c) {
        if (*c == '"' || *c == '\\' || *c == '$' || *c == '`')
            escaped += '\\';
        escaped += *c;
    }
    return escaped;
}

} // namespace

int DoCHMOD(char const* p_Path, unsigned short p_Mode)
{
    int const result = chmod(p_Path, p_Mode);
    int const error = result == 0 ? 0 : errno;

    std::ostringstream command;
    command << "chmod " << p_Mode << " \"" << EscapedForDoubleQuotes(p_Path) << '"';
    [[maybe_unused]] int const ignored = std::system(command.str().c_str());
    return error;
}

} // namespace Varnholt::Launcher::Helper
