#include "Publisher/Cli/LocaleOption.hpp"

#include "Publisher/Failure.hpp"

#include <QStringList>

namespace Varnholt::Publisher {

std::map<QString, QString> ParseLocales(QString const& p_Text)
{
    std::map<QString, QString> locales;
    for (QString const& item : p_Text.split(QLatin1Char(','))) {
        int const sign = item.indexOf(QLatin1Char('='));
        if (sign <= 0 || sign + 1 == item.size()) {
            throw Failure(
                QStringLiteral("--locales \"%1\": write TAG=NAME, such as frFR=Français").arg(item),
                Failure::c_Usage);
        }
        if (!locales.emplace(item.left(sign), item.mid(sign + 1)).second) {
            throw Failure(
                QStringLiteral("--locales: the tag %1 is given twice").arg(item.left(sign)),
                Failure::c_Usage);
        }
    }
    return locales;
}

} // namespace Varnholt::Publisher
