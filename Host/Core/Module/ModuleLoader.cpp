#include "Host/Core/Module/ModuleLoader.hpp"

#include "Host/Core/Trust/TrustRecord.hpp"

#include <QFileInfo>
#include <QPluginLoader>

namespace Varnholt::Host {

using Launcher::ApplicationRessource;

namespace {

QLatin1String const c_TrustKey("trust-key");

/// Why a module of that layout cannot be used; null when it can.
std::optional<QString> LayoutCause(QJsonValue const& p_Layout)
{
    if (p_Layout == Launcher::c_ApplicationLayout)
        return std::nullopt;
    QString const its =
        p_Layout.isDouble() ? QString::number(p_Layout.toDouble()) : ModuleLoader::tr("not named");
    return ModuleLoader::tr("its layout is %1, the host's is %2")
        .arg(its)
        .arg(Launcher::c_ApplicationLayout);
}

} // namespace

std::optional<Failure> ModuleLoader::Load(QString const& p_File)
{
    if (!QFileInfo(p_File).isFile())
        return Failure{FailureKind::ModuleMissing, p_File, {}};
    QPluginLoader loader(p_File);
    QString const id = loader.metaData()[QLatin1String("IID")].toString();
    if (id.isEmpty())
        return Failure{FailureKind::ModuleForeign, p_File, tr("it is no plug-in")};
    if (id != QLatin1String(Varnholt_Application_iid))
        return Failure{FailureKind::ModuleForeign, p_File, tr("its interface is \"%1\"").arg(id)};
    QJsonObject const metaData = loader.metaData()[QLatin1String("MetaData")].toObject();
    if (auto const cause = LayoutCause(metaData[QLatin1String("layout")]))
        return Failure{FailureKind::ModuleForeign, p_File, *cause};
    // A key that cannot be read must not count as no key.
    QString const whyNoKey = TrustRecord::WhyNoKey(metaData[c_TrustKey].toString());
    if (metaData.contains(c_TrustKey) && !whyNoKey.isEmpty())
        return Failure{FailureKind::ModuleUnloadable, p_File, whyNoKey};

    QObject* const instance = loader.instance();
    if (instance == nullptr)
        return Failure{FailureKind::ModuleUnloadable, p_File, loader.errorString()};
    // By its name: the class that the object is made of is the module's copy, not the host's.
    void* const object = qobject_cast<Launcher::Application*>(instance) == nullptr
                             ? nullptr
                             : instance->qt_metacast("Varnholt::Launcher::StandartApplication");
    if (object == nullptr) {
        delete instance;
        return Failure{FailureKind::ModuleForeign, p_File, tr("its object is of another class")};
    }
    File = p_File;
    MetaData = metaData;
    Object = static_cast<Launcher::StandartApplication*>(object);
    return std::nullopt;
}

void ModuleLoader::Release()
{
    if (Object == nullptr)
        return;
    Object->Uninit();
    delete Object;
    Object = nullptr;
}

ModuleInfo ModuleLoader::Info() const
{
    ModuleInfo info;
    info.File = File;
    info.Name = Object->GetName();
    info.AppId = Object->AppId;
    info.MetaDataName = MetaData[QLatin1String("name")].toString();
    info.Version = MetaData[QLatin1String("version")].toString();
    info.TrustKey = MetaData[c_TrustKey].toString();
    info.GameArguments = MetaData[QLatin1String("game-arguments")].toVariant().toStringList();
    QJsonObject const login = MetaData[QLatin1String("login")].toObject();
    info.LoginFiles = login[QLatin1String("files")].toVariant().toStringList();
    info.LoginTemplateSuffix = login[QLatin1String("template-suffix")].toString();

    auto const value = [this](ApplicationRessource::Type p_Type) {
        return Object->GetRessource(p_Type);
    };
    info.Presentation = {
        {QStringLiteral("background colour"), value(ApplicationRessource::BackgroundColor)},
        {QStringLiteral("background placement"), value(ApplicationRessource::BackgroundPlacement)},
        {QStringLiteral("theme colour"), value(ApplicationRessource::ThemeColor)},
        {QStringLiteral("page style"), value(ApplicationRessource::PageStyle)},
        {QStringLiteral("page overlay"), value(ApplicationRessource::PageOverlay)},
        {QStringLiteral("news placeholder"), value(ApplicationRessource::NewsPlaceholder)},
    };
    info.Images = {
        {QStringLiteral("background"), value(ApplicationRessource::BackgroundImage)},
        {QStringLiteral("icon"), value(ApplicationRessource::Icon)},
        {QStringLiteral("selected icon"), value(ApplicationRessource::IconSelected)},
    };
    return info;
}

} // namespace Varnholt::Host
