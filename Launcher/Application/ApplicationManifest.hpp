#pragma once

#include <QByteArray>
#include <QString>

#include <map>
#include <vector>

namespace Varnholt::Launcher {

/// One language that a build offers.
struct ApplicationManifestLocale {
    QString Tag;  ///< locale code as the game writes it, "enUS"
    QString Name; ///< display name
};

/// One file of a build.
struct ApplicationManifestFileEntry {
    /// Bits of `Flags`.
    enum Flag : qint32 {
        ReadOnly = 0x01,
        Executable = 0x02,
        MacGameExecutable = 0x04,
        WindowsGameExecutable = 0x08,
        FirstBuildOnly = 0x20,    ///< verified on a first build only, then trusted to the list
        DefaultServerOnly = 0x40, ///< never fetched from a mirror
        KeepIfPresent = 0x80,     ///< presence is enough: the game rewrites such files itself
    };

    qint32 Flags = 0;
    QString Location = QStringLiteral(""); ///< where it is fetched, relative to the server's folder
    QString Path = QStringLiteral("");     ///< where it lies, relative to the installation folder
    QString Md5 = QStringLiteral("");      ///< 32 upper-case hexadecimal digits
    QString Locale = QStringLiteral("");   ///< empty, or the tag of the one language it belongs to

    bool Has(Flag p_Flag) const { return (Flags & p_Flag) != 0; }
    /// Whether an installation in that language has the file.
    bool IsFor(QString const& p_Locale) const { return Locale.isEmpty() || Locale == p_Locale; }
};

/// A parsed build manifest.
struct ApplicationManifest {
    QString BuildId;
    QString BuildStr;
    qint32 BuildNumber = 0;
    std::map<QString, ApplicationManifestLocale> Locales;    ///< by tag
    std::vector<ApplicationManifestFileEntry> Files;         ///< base files, in document order
    std::vector<ApplicationManifestFileEntry> StreamedFiles; ///< in document order
};

/// The flag bit that marks the game's executable in the builds that this module fetches.
#ifdef VARNHOLT_CONTENT_PLATFORM_WIN
constexpr auto c_GameExecutableFlag = ApplicationManifestFileEntry::WindowsGameExecutable;
#else
constexpr auto c_GameExecutableFlag = ApplicationManifestFileEntry::MacGameExecutable;
#endif

/// Reads a manifest document.
///
/// Missing keys and wrong types below the top level read as empty values; file entries in a
/// language that the document does not declare are dropped. Logs nothing.
/// \param p_Data the document as received; bytes after a NUL byte are not seen
/// \param p_Success set on return: false when the bytes are no JSON object
/// \param p_PreferSierra read the "base_mac_sierra" list on macOS 10.12 and later
/// \return the manifest, empty on failure
ApplicationManifest ParseApplicationManifest(QByteArray const& p_Data, bool& p_Success,
                                             bool p_PreferSierra);

} // namespace Varnholt::Launcher
