#include "Host/Window/Desktop/Language.hpp"

#include "Launcher/Application/LauncherLocale.hpp"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>

/// Of a library they are there only when somebody asks for them.
static void LoadTranslations()
{
    Q_INIT_RESOURCE(translations);
}

namespace Varnholt::Host {

namespace {

/// "fr_FR" of "frFR".
QString LocaleName(QString const& p_Code)
{
    return p_Code.left(2) + QLatin1Char('_') + p_Code.mid(2);
}

QString CodeOrSystems(QString const& p_Code)
{
    auto const available = Launcher::LauncherLocale::Available();
    for (Launcher::LauncherLocale const& locale : available)
        if (locale.Code == p_Code)
            return p_Code;
    for (QString const& wanted : QLocale::system().uiLanguages())
        for (Launcher::LauncherLocale const& locale : available)
            if (locale.Code.left(2) == wanted.left(2))
                return locale.Code;
    return available.front().Code;
}

} // namespace

Language::~Language()
{
    for (auto const& translator : Translators)
        QCoreApplication::removeTranslator(translator.get());
}

void Language::Use(QString const& p_Code)
{
    QString const code = CodeOrSystems(p_Code);
    if (code == InUse)
        return;
    InUse = code;
    for (auto const& translator : Translators)
        QCoreApplication::removeTranslator(translator.get());
    Translators.clear();
    LoadTranslations();
    QLocale::setDefault(QLocale(LocaleName(code))); // what follows tells the widgets
    Install(QStringLiteral("qtbase_") + code.left(2),
            QLibraryInfo::location(QLibraryInfo::TranslationsPath));
    Install(QStringLiteral("varnholt_") + code, QStringLiteral(":/translations"));
}

void Language::Install(QString const& p_File, QString const& p_Folder)
{
    auto translator = std::make_unique<QTranslator>();
    if (!translator->load(p_File, p_Folder))
        return; // English is in the sources
    QCoreApplication::installTranslator(translator.get());
    Translators.push_back(std::move(translator));
}

} // namespace Varnholt::Host
