#include "GameModules/Pelmora/Pelmora.hpp"

namespace Varnholt::Launcher {

Pelmora::Pelmora()
    : StandartApplication(QStringLiteral("Mists of Pandaria"),
                          QStringLiteral(VARNHOLT_MODULE_IDENTIFIER))
{
}

void Pelmora::Init()
{
    StandartApplication::Init();
}

void Pelmora::Uninit() {}

QString Pelmora::GetRessource(ApplicationRessource::Type p_Type)
{
    switch (p_Type) {
    case ApplicationRessource::BackgroundImage:
        return QStringLiteral(":/app_" VARNHOLT_MODULE_IDENTIFIER "/background.jpg");
    case ApplicationRessource::BackgroundColor:
        return QStringLiteral("#09111C");
    case ApplicationRessource::BackgroundPlacement:
        return QStringLiteral("top right");
    case ApplicationRessource::Icon:
        return QStringLiteral(":/app_" VARNHOLT_MODULE_IDENTIFIER "/icon_mop.png");
    case ApplicationRessource::IconSelected:
        return QStringLiteral(":/app_" VARNHOLT_MODULE_IDENTIFIER "/icon_mop_active.png");
    case ApplicationRessource::ThemeColor:
        return QStringLiteral("3,9,14");
    case ApplicationRessource::PageStyle:
        return QStringLiteral("4");
    case ApplicationRessource::PageOverlay: // this game's page has none
        return {};
    case ApplicationRessource::NewsPlaceholder:
        return QStringLiteral("http://www.varnholt.example/news/pelmora_placeholder.jpg");
    }
    return {};
}

} // namespace Varnholt::Launcher
