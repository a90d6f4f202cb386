#pragma once

#include <QMutex>
#include <QPair>
#include <QString>
#include <QVector>

namespace Varnholt::Host {

/// Names for addresses that mean nothing outside of this process: in what people read, a server
/// takes the place of the door to it. All operations from any thread.
class AddressNames {
public:
    /// An address and what stands for it.
    using Rows = QVector<QPair<QString, QString>>;

    /// \param p_Rows where one address begins with another, the longer one first
    void Set(Rows p_Rows);
    /// The text with the addresses replaced, row after row.
    QString Replace(QString const& p_Text) const;

private:
    mutable QMutex RowsMutex;
    Rows Known;
};

} // namespace Varnholt::Host
