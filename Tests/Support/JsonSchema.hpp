#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <QString>

namespace Varnholt::TestSupport {

/// A JSON schema with the few words that our own use: type, enum, minimum, minLength, pattern,
/// required, properties, propertyNames, additionalProperties, items, oneOf. Any other word is a
/// fault of every value.
class JsonSchema {
public:
    explicit JsonSchema(QJsonObject p_Schema)
        : Root(std::move(p_Schema))
    {
    }
    /// One of docs; fails the whole program when there is none of that name.
    static JsonSchema Documented(QString const& p_Name);

    /// What is wrong with a value, with the place; empty when nothing is.
    QString Fault(QJsonValue const& p_Value) const { return Fault(p_Value, Root, {}); }
    QJsonObject const& Words() const { return Root; }

private:
    static QString Fault(QJsonValue const& p_Value, QJsonObject const& p_Schema,
                         QString const& p_Place);
    static QString FaultOfText(QString const& p_Value, QJsonObject const& p_Schema,
                               QString const& p_Place);
    static QString FaultOfObject(QJsonObject const& p_Value, QJsonObject const& p_Schema,
                                 QString const& p_Place);
    static QString FaultOfChoice(QJsonValue const& p_Value, QJsonObject const& p_Schema,
                                 QString const& p_Place);

    QJsonObject Root;
};

} // namespace Varnholt::TestSupport
