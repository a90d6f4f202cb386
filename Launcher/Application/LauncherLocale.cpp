#include "Launcher/Application/LauncherLocale.hpp"

#include <algorithm>
#include <iterator>

namespace Varnholt::Launcher {

std::array<LauncherLocale, 6> const& LauncherLocale::Table()
{
    static std::array<LauncherLocale, 6> const s_Table{{
        {0, QStringLiteral("English"), QStringLiteral("English"),
         QStringLiteral("Locales/locale_enUS.qm"), QStringLiteral("enUS")},
        {1, QStringLiteral("French"), QString::fromUtf8("Français"),
         QStringLiteral("Locales/locale_frFR.qm"), QStringLiteral("frFR")},
        {},
        {3, QStringLiteral("Spanish"), QString::fromUtf8("Español"),
         QStringLiteral("Locales/locale_esES.qm"), QStringLiteral("esES")},
        {},
        {5, QStringLiteral("Italian"), QStringLiteral("Italiano"),
         QStringLiteral("Locales/locale_itIT.qm"), QStringLiteral("itIT")},
    }};
    return s_Table;
}

std::vector<LauncherLocale> LauncherLocale::Available()
{
    std::vector<LauncherLocale> available;
    std::copy_if(Table().begin(), Table().end(), std::back_inserter(available),
                 [](LauncherLocale const& p_Locale) { return !p_Locale.IsBlank(); });
    return available;
}

} // namespace Varnholt::Launcher
