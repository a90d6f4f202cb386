#pragma once

#include "Host/Core/Network/AddressNames.hpp"

#include <QString>
#include <QtGlobal>

#include <memory>

namespace Varnholt::Host {

class Console;

/// Takes over Qt's message log, through which the module speaks, for as long as it lives. One at a
/// time.
class MessageLog {
public:
    /// \param p_Verbose show everything; otherwise only what ends the program
    /// \param p_File everything is appended to it, with the time; its owner alone can read it.
    /// Empty: to none
    /// \param p_Names what stands for addresses in what is shown and written
    MessageLog(Console& p_Console, bool p_Verbose, QString const& p_File,
               std::shared_ptr<AddressNames const> p_Names);
    ~MessageLog();
    MessageLog(MessageLog const&) = delete;
    MessageLog& operator=(MessageLog const&) = delete;

    /// Appends a line to the file only, if there is one. Any thread.
    static void Write(QString const& p_Text);

private:
    QtMessageHandler Former;
};

} // namespace Varnholt::Host
