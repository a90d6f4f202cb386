#pragma once

#include <QString>
#include <QtGlobal>

namespace Varnholt::Host {

class Console;

/// Takes over Qt's message log, through which the module speaks, for as long as it lives. One at a
/// time.
class MessageLog {
public:
    /// \param p_Verbose show everything; otherwise only what ends the program
    /// \param p_File everything is appended to it, with the time; empty: to none
    MessageLog(Console& p_Console, bool p_Verbose, QString const& p_File);
    ~MessageLog();
    MessageLog(MessageLog const&) = delete;
    MessageLog& operator=(MessageLog const&) = delete;

private:
    QtMessageHandler Former;
};

} // namespace Varnholt::Host
