#pragma once

#include <QString>
#include <QStringList>
#include <QtGlobal>

#include <vector>

namespace Varnholt::TestSupport {

/// Collects every message of the Qt log, of any thread, as long as it lives; then the handler of
/// before is back. One at a time.
class LogCapture {
public:
    struct Message {
        QtMsgType Type;
        QString Category;
        QString Text;
    };

    LogCapture();
    ~LogCapture();
    LogCapture(LogCapture const&) = delete;
    LogCapture& operator=(LogCapture const&) = delete;

    std::vector<Message> Messages() const;
    /// The texts of one category, or of all.
    QStringList Texts(QString const& p_Category = {}) const;
    /// How many messages read exactly so.
    int Count(QString const& p_Text) const;
    int CountContaining(QString const& p_Part) const;
    void Clear();

private:
    QtMessageHandler Before;
};

} // namespace Varnholt::TestSupport
