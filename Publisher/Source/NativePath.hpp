#pragma once

#include <QString>

#include <filesystem>

namespace Varnholt::Publisher::NativePath {

/// Paths are UTF-8 on disk, whatever the locale says.
inline std::filesystem::path From(QString const& p_Path)
{
    return std::filesystem::u8path(p_Path.toStdString());
}

inline QString ToText(std::filesystem::path const& p_Path)
{
    return QString::fromStdString(p_Path.u8string());
}

} // namespace Varnholt::Publisher::NativePath
