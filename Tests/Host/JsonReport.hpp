#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <vector>

namespace Varnholt::TestSupport {

/// What a program has written for other programs: one object per line.
class JsonReport {
public:
    explicit JsonReport(QString const& p_Out);

    std::vector<QJsonObject> Of(QString const& p_Type) const;
    /// The last line; empty when there is none.
    QJsonObject Last() const { return Lines.empty() ? QJsonObject() : Lines.back(); }
    /// The values of a key, of the lines of a type, in order.
    QStringList Texts(QString const& p_Type, QString const& p_Key) const;
    /// The phases, each as often as it was entered.
    QStringList Phases() const;

    std::vector<QJsonObject> Lines;
    QStringList Foreign; ///< lines that are no objects
};

} // namespace Varnholt::TestSupport
