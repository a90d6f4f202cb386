#pragma once

#include <QtGlobal>

namespace Varnholt::Host {

class Console;

/// Takes over Qt's message log, through which the module speaks, for as long as it lives. One at a
/// time.
class MessageLog {
public:
    /// \param p_Verbose show everything; otherwise only what ends the program
    MessageLog(Console& p_Console, bool p_Verbose);
    ~MessageLog();
    MessageLog(MessageLog const&) = delete;
    MessageLog& operator=(MessageLog const&) = delete;

private:
    QtMessageHandler Former;
};

} // namespace Varnholt::Host
