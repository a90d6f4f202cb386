#pragma once

#include "Host/Core/Network/AddressNames.hpp"

#include <QMetaType>
#include <QObject>
#include <QString>
#include <QtGlobal>

#include <memory>

namespace Varnholt::Host {

/// What the program, the module or a library has said about its work.
struct LogEntry {
    QtMsgType Type = QtDebugMsg;
    QString Category; ///< "varnholt.download"
    QString Text;

    /// For people, "[varnholt.download] text".
    QString Line() const { return QStringLiteral("[%1] %2").arg(Category, Text); }
};

/// Takes over Qt's message log, through which the module speaks, for as long as it lives. One at a
/// time.
class MessageLog : public QObject {
    Q_OBJECT

public:
    /// \param p_File everything is appended to it, with the time; its owner alone can read it.
    /// Empty: to none
    /// \param p_Names what stands for addresses in what is told and written
    MessageLog(QString const& p_File, std::shared_ptr<AddressNames const> p_Names,
               QObject* p_Parent = nullptr);
    ~MessageLog() override;

    /// Why the file cannot be written; empty when it can, or there is none.
    QString const& Problem() const { return WhyNot; }
    /// Appends a line to the file only, if there is one. Any thread.
    static void Write(QString const& p_Text);

Q_SIGNALS:
    /// Emitted by the thread that has said it; one that is queued may come too late for a fatal
    /// one.
    void Logged(Varnholt::Host::LogEntry p_Entry);

private:
    static void Handle(QtMsgType p_Type, QMessageLogContext const& p_Context,
                       QString const& p_Text);

    std::shared_ptr<AddressNames const> const Names;
    QString WhyNot;
    QtMessageHandler Former;
};

} // namespace Varnholt::Host

Q_DECLARE_METATYPE(Varnholt::Host::LogEntry)
