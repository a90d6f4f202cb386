#include "Tests/Install/PluginGame.hpp"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

namespace Varnholt::TestSupport {

PluginGame::PluginGame()
    : Folder(QDir(Temporary.path()).canonicalPath() + QString::fromUtf8("/Jeux été/Game/"))
{
    Server.BecomeDefaultContentServer();
    Load();
}

PluginGame::~PluginGame() = default;

void PluginGame::Load()
{
    Plugin = std::make_unique<LoadedPlugin>();
    if (Plugin->App() == nullptr)
        qFatal("%s", qPrintable(Plugin->GetLoader().errorString()));
    CurrentHost = std::make_unique<TestHost>(*Plugin->App());
}

bool PluginGame::Init()
{
    App().Init();
    return Finish();
}

bool PluginGame::Install(bool p_Flag)
{
    App().Install(Folder, p_Flag);
    return Finish();
}

bool PluginGame::Repair()
{
    App().Repair();
    return Finish();
}

void PluginGame::Restart()
{
    QMap<QString, QVariant> settings;
    for (QString const& key : CurrentHost->SettingKeys())
        settings[key] = CurrentHost->Setting(key);
    std::size_t const locale = CurrentHost->LocaleIndex;
    CurrentHost.reset();
    Plugin.reset();
    Load();
    for (auto setting = settings.cbegin(); setting != settings.cend(); ++setting)
        CurrentHost->SetSetting(setting.key(), setting.value());
    CurrentHost->LocaleIndex = locale;
}

bool PluginGame::Has(QString const& p_File) const
{
    return QFile::exists(Path(p_File));
}

QByteArray PluginGame::Read(QString const& p_File) const
{
    QFile file(Path(p_File));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
}

void PluginGame::Put(QString const& p_File, QByteArray const& p_Bytes) const
{
    QDir().mkpath(QFileInfo(Path(p_File)).absolutePath());
    QFile file(Path(p_File));
    if (!file.open(QIODevice::WriteOnly) || file.write(p_Bytes) != p_Bytes.size())
        qFatal("cannot write %s", qPrintable(Path(p_File)));
}

QStringList PluginGame::Wrong(QString const& p_Locale) const
{
    QStringList wrong;
    for (SampleFile const& file : Content.Files) {
        bool const wanted = file.Locale.isEmpty() || file.Locale == p_Locale;
        if (wanted ? !Has(file.Path) || Read(file.Path) != file.Bytes : Has(file.Path))
            wrong += file.Path;
    }
    return wrong;
}

QStringList PluginGame::FilesEndingWith(QString const& p_End) const
{
    QStringList names;
    QDirIterator files(Folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext())
        if (QString const name = files.next().mid(Folder.size()); name.endsWith(p_End))
            names += name;
    names.sort();
    return names;
}

QStringList PluginGame::Requested() const
{
    QString const prefix = Content.ServerPath(QString());
    QStringList paths;
    for (RecordedRequest const& request : Server.Requests())
        if (static_cast<std::size_t>(request.Number) >= Forgotten &&
            request.Path.startsWith(prefix))
            paths += request.Path.mid(prefix.size());
    paths.sort();
    return paths;
}

} // namespace Varnholt::TestSupport
