#include "GameModules/PermissionBits.hpp"

#include "Launcher/Helper/CHMOD.hpp"

#include <QFile>

namespace Varnholt::Launcher::PermissionBits {

namespace {

// Decimal numbers that spell octal modes: DoCHMOD's shell command reads them so, and runs last.
constexpr unsigned short c_ReadOnlyMode = 444;
constexpr unsigned short c_ExecutableMode = 777;

void MakeReadOnly(QString const& p_Path)
{
    Helper::DoCHMOD(p_Path.toUtf8().constData(), c_ReadOnlyMode);
    QFile file(p_Path);
    if (file.open(QIODevice::ReadWrite))
        file.setPermissions(file.permissions() & ~c_Write);
}

template <typename Change>
void MakeExecutable(QString const& p_Path, Change p_Change)
{
    QFile file(p_Path);
    if (file.open(QIODevice::ReadWrite)) {
        file.setPermissions(p_Change(file.permissions()));
        file.close();
    }
    Helper::DoCHMOD(p_Path.toUtf8().constData(), c_ExecutableMode);
}

} // namespace

bool IsAskedFor(ApplicationManifestFileEntry const& p_Entry)
{
    return p_Entry.Has(ApplicationManifestFileEntry::ReadOnly) ||
           p_Entry.Has(ApplicationManifestFileEntry::Executable);
}

void ApplyToNewFile(QString const& p_Path, ApplicationManifestFileEntry const& p_Entry)
{
    if (p_Entry.Has(ApplicationManifestFileEntry::ReadOnly))
        MakeReadOnly(p_Path);
    if (p_Entry.Has(ApplicationManifestFileEntry::Executable))
        MakeExecutable(p_Path, [](QFileDevice::Permissions p_Now) { return p_Now | c_All; });
}

void FixExistingFile(QString const& p_Path, ApplicationManifestFileEntry const& p_Entry)
{
    if (p_Entry.Has(ApplicationManifestFileEntry::ReadOnly))
        MakeReadOnly(p_Path);
    // Masked, not added to: the mode that the game has set stays until DoCHMOD has its say.
    if (p_Entry.Has(ApplicationManifestFileEntry::Executable))
        MakeExecutable(p_Path, [](QFileDevice::Permissions p_Now) { return p_Now & c_All; });
}

} // namespace Varnholt::Launcher::PermissionBits
