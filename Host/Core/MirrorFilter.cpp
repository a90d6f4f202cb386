#include "Host/Core/MirrorFilter.hpp"

#include <QUrl>

#include <algorithm>

namespace Varnholt::Host::MirrorFilter {

namespace {

bool IsHostName(QString const& p_Name)
{
    QUrl const url(QStringLiteral("http://") + p_Name + QLatin1Char('/'), QUrl::StrictMode);
    bool const plain = std::none_of(p_Name.begin(), p_Name.end(), [](QChar p_Character) {
        return p_Character.isSpace() || QStringLiteral("<>\"{}?#@").contains(p_Character);
    });
    return plain && url.isValid() && !url.host().isEmpty();
}

QStringList Trimmed(QStringList const& p_Hosts)
{
    QStringList names;
    for (QString const& host : p_Hosts) {
        QString const name = host.trimmed();
        if (!name.isEmpty())
            names += name;
    }
    return names;
}

/// "host:port" of a name that may go on with a path.
QString Authority(QString const& p_Name)
{
    return QUrl(QStringLiteral("http://") + p_Name).authority();
}

} // namespace

bool IsForeign(QStringList const& p_Hosts)
{
    QStringList const names = Trimmed(p_Hosts);
    return !std::all_of(names.begin(), names.end(), IsHostName);
}

QStringList Apply(QStringList const& p_Hosts, QSet<QString> const& p_Dead)
{
    if (IsForeign(p_Hosts))
        return {};
    QStringList const names = Trimmed(p_Hosts);
    QStringList alive;
    for (QString const& name : names)
        if (!p_Dead.contains(Authority(name)))
            alive += name;
    return alive.isEmpty() ? names : alive;
}

} // namespace Varnholt::Host::MirrorFilter
