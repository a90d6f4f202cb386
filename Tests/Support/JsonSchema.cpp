#include "Tests/Support/JsonSchema.hpp"

#include "Tests/Support/FileTools.hpp"

#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QStringList>

#include <cmath>

namespace Varnholt::TestSupport {

namespace {

bool IsOfType(QJsonValue const& p_Value, QString const& p_Type)
{
    if (p_Type == QLatin1String("string"))
        return p_Value.isString();
    if (p_Type == QLatin1String("boolean"))
        return p_Value.isBool();
    if (p_Type == QLatin1String("object"))
        return p_Value.isObject();
    if (p_Type == QLatin1String("array"))
        return p_Value.isArray();
    if (p_Type == QLatin1String("integer"))
        return p_Value.isDouble() && std::floor(p_Value.toDouble()) == p_Value.toDouble();
    return false;
}

/// Words that say something this validator does not understand must not pass for fulfilled.
QString UnknownWord(QJsonObject const& p_Schema)
{
    QStringList const known{"$schema",     "title",
                            "description", "type",
                            "enum",        "minimum",
                            "minLength",   "pattern",
                            "required",    "oneOf",
                            "properties",  "propertyNames",
                            "items",       "additionalProperties"};
    for (QString const& word : p_Schema.keys())
        if (!known.contains(word))
            return word;
    return {};
}

} // namespace

JsonSchema JsonSchema::Documented(QString const& p_Name)
{
    QString const file = QStringLiteral(VARNHOLT_DOCUMENTS "/%1.schema.json").arg(p_Name);
    QJsonDocument const document = QJsonDocument::fromJson(ReadFile(file));
    if (!document.isObject())
        qFatal("%s is no JSON object", qPrintable(file));
    return JsonSchema(document.object());
}

QString JsonSchema::Fault(QJsonValue const& p_Value, QJsonObject const& p_Schema,
                          QString const& p_Place)
{
    if (QString const word = UnknownWord(p_Schema); !word.isEmpty())
        return p_Place + QStringLiteral(": unknown word of the schema: ") + word;
    if (p_Schema.contains("type") && !IsOfType(p_Value, p_Schema["type"].toString()))
        return p_Place + QStringLiteral(": is no ") + p_Schema["type"].toString();
    if (p_Schema.contains("enum") && !p_Schema["enum"].toArray().contains(p_Value))
        return p_Place + QStringLiteral(": is none of the values");
    if (p_Schema.contains("minimum") && p_Value.toDouble() < p_Schema["minimum"].toDouble())
        return p_Place + QStringLiteral(": is too small");
    QString fault;
    if (p_Value.isString())
        fault = FaultOfText(p_Value.toString(), p_Schema, p_Place);
    if (p_Value.isObject())
        fault = FaultOfObject(p_Value.toObject(), p_Schema, p_Place);
    QJsonArray const items = p_Value.toArray();
    for (int i = 0; i < items.size() && fault.isEmpty(); ++i)
        fault = Fault(items[i], p_Schema["items"].toObject(),
                      QStringLiteral("%1/%2").arg(p_Place).arg(i));
    if (!fault.isEmpty())
        return fault;
    return p_Schema.contains("oneOf") ? FaultOfChoice(p_Value, p_Schema, p_Place) : QString();
}

QString JsonSchema::FaultOfText(QString const& p_Value, QJsonObject const& p_Schema,
                                QString const& p_Place)
{
    if (p_Value.size() < p_Schema["minLength"].toInt())
        return p_Place + QStringLiteral(": is too short");
    QRegularExpression const pattern(p_Schema["pattern"].toString());
    if (!pattern.match(p_Value).hasMatch())
        return p_Place + QStringLiteral(": does not match ") + pattern.pattern();
    return {};
}

QString JsonSchema::FaultOfObject(QJsonObject const& p_Value, QJsonObject const& p_Schema,
                                  QString const& p_Place)
{
    for (QJsonValue const& key : p_Schema["required"].toArray())
        if (!p_Value.contains(key.toString()))
            return p_Place + QStringLiteral("/%1: is missing").arg(key.toString());
    QJsonObject const properties = p_Schema["properties"].toObject();
    QJsonValue const others = p_Schema["additionalProperties"];
    for (QString const& key : p_Value.keys()) {
        QString const place = p_Place + QLatin1Char('/') + key;
        QString fault = Fault(key, p_Schema["propertyNames"].toObject(), place);
        if (!fault.isEmpty())
            return fault;
        if (!properties.contains(key) && others.isBool() && !others.toBool())
            return place + QStringLiteral(": is not known");
        QJsonValue const schema = properties.contains(key) ? properties[key] : others;
        fault = Fault(p_Value[key], schema.toObject(), place);
        if (!fault.isEmpty())
            return fault;
    }
    return {};
}

QString JsonSchema::FaultOfChoice(QJsonValue const& p_Value, QJsonObject const& p_Schema,
                                  QString const& p_Place)
{
    int fitting = 0;
    QStringList faults;
    for (QJsonValue const& schema : p_Schema["oneOf"].toArray()) {
        QString const fault = Fault(p_Value, schema.toObject(), p_Place);
        if (fault.isEmpty())
            ++fitting;
        else
            faults += schema["title"].toString() + fault;
    }
    if (fitting == 1)
        return {};
    return QStringLiteral("%1: fits %2 (%3)")
        .arg(p_Place)
        .arg(fitting)
        .arg(faults.join(QStringLiteral("; ")));
}

} // namespace Varnholt::TestSupport
