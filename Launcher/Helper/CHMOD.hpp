#pragma once

namespace Varnholt::Launcher::Helper {

/// Sets a file's mode, first through the system call, then through the shell's chmod command.
///
/// Callers write the mode in decimal digits that spell the wanted octal mode (444, 777). The system
/// call takes the number as it is; the command reads its digits as octal, runs last, and so decides
/// the mode that stays.
/// \param p_Path in the file system's encoding
/// \return 0 when the system call succeeded, else its errno
int DoCHMOD(char const* p_Path, unsigned short p_Mode);

} // namespace Varnholt::Launcher::Helper
