#include "Tests/Support/JsonSchema.hpp"

#include "Tests/Support/FileTools.hpp"

#include <QJsonArray>
#include <QJsonDocument>

#include <valijson/adapters/nlohmann_json_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validation_results.hpp>
#include <valijson/validator.hpp>

namespace Varnholt::TestSupport {

namespace {

/// The validator's own adapter for Qt's values knows no whole numbers of more than 32 bits.
nlohmann::json Read(QJsonValue const& p_Value)
{
    return nlohmann::json::parse(QJsonDocument(QJsonArray{p_Value}).toJson().toStdString())[0];
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

QString JsonSchema::Fault(QJsonValue const& p_Value) const
{
    using valijson::adapters::NlohmannJsonAdapter;

    nlohmann::json const root = Read(Root);
    nlohmann::json const value = Read(p_Value);
    valijson::Schema schema;
    valijson::SchemaParser().populateSchema(NlohmannJsonAdapter(root), schema);
    valijson::ValidationResults results;
    if (valijson::Validator().validate(schema, NlohmannJsonAdapter(value), &results))
        return {};
    QString faults;
    for (valijson::ValidationResults::Error const& fault : results) {
        for (std::string const& place : fault.context)
            faults += QString::fromStdString(place);
        faults += ": " + QString::fromStdString(fault.description) + '\n';
    }
    return faults;
}

} // namespace Varnholt::TestSupport
