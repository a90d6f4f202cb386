#include "Publisher/Rules/RuleSetReader.hpp"

#include "Publisher/ReadFile.hpp"
#include "Publisher/Rules/FlagNames.hpp"
#include "Publisher/Rules/RuleLines.hpp"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace Varnholt::Publisher {

namespace {

QString const c_Rules = QStringLiteral("rules");
QString const c_Locales = QStringLiteral("locales");
QString const c_Match = QStringLiteral("match");
QString const c_Flags = QStringLiteral("flags");
QString const c_Locale = QStringLiteral("locale");
QString const c_Streamed = QStringLiteral("streamed");
QString const c_Exclude = QStringLiteral("exclude");

QString Quoted(QString const& p_Text)
{
    return QLatin1Char('"') + p_Text + QLatin1Char('"');
}

QString KeyIn(QString const& p_Place, QString const& p_Key)
{
    return p_Place + QStringLiteral(": ") + Quoted(p_Key);
}

/// As editors count: from 1, and in characters.
QString PlaceIn(QByteArray const& p_Text, int p_Offset)
{
    QByteArray const before = p_Text.left(p_Offset);
    QByteArray const line = before.mid(before.lastIndexOf('\n') + 1);
    return QStringLiteral("line %1, column %2")
        .arg(1 + before.count('\n'))
        .arg(1 + QString::fromUtf8(line).toUcs4().size());
}

class RuleSetReader {
public:
    RuleSetReader(QString const& p_FileName, ContentPlatform p_Platform)
        : FileName(p_FileName)
        , Platform(p_Platform)
    {
    }

    RuleSet Read(std::map<QString, QString> const& p_Locales) const
    {
        QByteArray const text = ReadFile(FileName);
        QJsonObject const document = ParseDocument(text);
        CheckKeys(document, {c_Rules, c_Locales}, QString());

        RuleSet set;
        set.Locales = p_Locales;
        set.Locales.merge(ReadLocales(document));

        QJsonValue const rules = document.value(c_Rules);
        if (!rules.isArray() && !rules.isUndefined())
            Fail(Quoted(c_Rules), QStringLiteral("must be an array of objects"));
        QJsonArray const array = rules.toArray();
        std::vector<int> const lines = RuleLines(text);
        for (int i = 0; i < array.size(); ++i) {
            int const line = lines.at(static_cast<std::size_t>(i));
            QString const place = QStringLiteral("line %1, rules[%2]").arg(line).arg(i);
            Rule rule = ReadRule(array[i], place);
            rule.Line = line;
            QString const locale = rule.Locale.value_or(QString());
            if (!locale.isEmpty() && set.Locales.count(locale) == 0) {
                Fail(place,
                     QStringLiteral("the locale %1 is not declared: add it to \"locales\" or "
                                    "give it with --locales")
                         .arg(Quoted(locale)));
            }
            set.Rules.push_back(rule);
        }
        return set;
    }

private:
    QJsonObject ParseDocument(QByteArray const& p_Text) const
    {
        QJsonParseError error{};
        QJsonDocument const document = QJsonDocument::fromJson(p_Text, &error);
        if (error.error != QJsonParseError::NoError) {
            Fail(PlaceIn(p_Text, error.offset), error.errorString());
        }
        if (!document.isObject())
            throw Failure(FileName + QStringLiteral(": the top level must be a JSON object"));
        return document.object();
    }

    std::map<QString, QString> ReadLocales(QJsonObject const& p_Document) const
    {
        QJsonValue const value = p_Document.value(c_Locales);
        if (!value.isObject() && !value.isUndefined())
            Fail(Quoted(c_Locales), QStringLiteral("must be an object of names by tag"));

        std::map<QString, QString> locales;
        QJsonObject const object = value.toObject();
        for (auto row = object.begin(); row != object.end(); ++row) {
            if (row.key().isEmpty())
                Fail(Quoted(c_Locales), QStringLiteral("holds an empty tag"));
            locales[row.key()] = ReadText(row.value(), KeyIn(Quoted(c_Locales), row.key()));
        }
        return locales;
    }

    Rule ReadRule(QJsonValue const& p_Value, QString const& p_Place) const
    {
        if (!p_Value.isObject())
            Fail(p_Place, QStringLiteral("must be an object"));
        QJsonObject const object = p_Value.toObject();
        CheckKeys(object, {c_Match, c_Flags, c_Locale, c_Streamed, c_Exclude}, p_Place);

        QString const pattern = ReadMatch(object, p_Place);
        Rule rule{GlobPattern(pattern), {}, {}, {}, {}, pattern, 0};
        if (object.contains(c_Flags))
            rule.Flags = ReadFlags(object[c_Flags], KeyIn(p_Place, c_Flags));
        if (object.contains(c_Locale))
            rule.Locale = ReadText(object[c_Locale], KeyIn(p_Place, c_Locale));
        if (object.contains(c_Streamed))
            rule.Streamed = ReadSwitch(object[c_Streamed], KeyIn(p_Place, c_Streamed));
        if (object.contains(c_Exclude))
            rule.Excluded = ReadSwitch(object[c_Exclude], KeyIn(p_Place, c_Exclude));
        return rule;
    }

    QString ReadMatch(QJsonObject const& p_Rule, QString const& p_Place) const
    {
        if (!p_Rule.contains(c_Match))
            Fail(p_Place, QStringLiteral("has no \"match\""));
        QString text = ReadText(p_Rule[c_Match], KeyIn(p_Place, c_Match));
        QString const problem = GlobPattern::Problem(text);
        if (!problem.isEmpty())
            Fail(p_Place, QStringLiteral("the pattern %1 %2").arg(Quoted(text), problem));
        return text;
    }

    qint32 ReadFlags(QJsonValue const& p_Value, QString const& p_Place) const
    {
        if (!p_Value.isArray())
            Fail(p_Place, QStringLiteral("must be an array of flag names"));
        qint32 flags = 0;
        for (auto const& value : p_Value.toArray()) {
            QString const name = ReadText(value, p_Place);
            std::optional<qint32> const flag = FlagNames::Flag(name, Platform);
            if (!flag) {
                Fail(p_Place, QStringLiteral("unknown flag name %1; the names are %2")
                                  .arg(Quoted(name), FlagNames::All().join(QStringLiteral(", "))));
            }
            flags |= *flag;
        }
        return flags;
    }

    QString ReadText(QJsonValue const& p_Value, QString const& p_Place) const
    {
        if (!p_Value.isString())
            Fail(p_Place, QStringLiteral("must hold text"));
        return p_Value.toString();
    }

    bool ReadSwitch(QJsonValue const& p_Value, QString const& p_Place) const
    {
        if (!p_Value.isBool())
            Fail(p_Place, QStringLiteral("must be true or false"));
        return p_Value.toBool();
    }

    void CheckKeys(QJsonObject const& p_Object, QStringList const& p_Known,
                   QString const& p_Place) const
    {
        for (QString const& key : p_Object.keys()) {
            if (!p_Known.contains(key)) {
                Fail(p_Place, QStringLiteral("unknown key %1; the keys are %2")
                                  .arg(Quoted(key), p_Known.join(QStringLiteral(", "))));
            }
        }
    }

    void Fail(QString const& p_Place, QString const& p_Cause) const
    {
        QStringList parts{FileName, p_Place, p_Cause};
        parts.removeAll(QString());
        throw Failure(parts.join(QStringLiteral(": ")));
    }

    QString FileName;
    ContentPlatform Platform;
};

} // namespace

RuleSet ReadRuleSet(QString const& p_FileName, ContentPlatform p_Platform,
                    std::map<QString, QString> const& p_Locales)
{
    return RuleSetReader(p_FileName, p_Platform).Read(p_Locales);
}

} // namespace Varnholt::Publisher
