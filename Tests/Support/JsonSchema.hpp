#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <QString>

namespace Varnholt::TestSupport {

/// A JSON schema.
class JsonSchema {
public:
    explicit JsonSchema(QJsonObject p_Schema)
        : Root(std::move(p_Schema))
    {
    }
    /// One of docs; fails the whole program when there is none of that name.
    static JsonSchema Documented(QString const& p_Name);

    /// What is wrong with a value, with the place; empty when nothing is.
    QString Fault(QJsonValue const& p_Value) const;
    QJsonObject const& Words() const { return Root; }

private:
    QJsonObject Root;
};

} // namespace Varnholt::TestSupport
