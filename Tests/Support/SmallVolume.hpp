#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>

#ifdef Q_OS_LINUX
#include <sys/mount.h>
#endif

namespace Varnholt::TestSupport {

/// A volume of its own, as long as it lives.
class SmallVolume {
public:
    SmallVolume(QString const& p_Folder, char const* p_Size)
        : Folder(p_Folder.toUtf8())
    {
        QDir().mkpath(p_Folder);
#ifdef Q_OS_LINUX
        Mounted = ::mount("tmpfs", Folder.constData(), "tmpfs", 0,
                          (QByteArray("size=") + p_Size).constData()) == 0;
#else
        Q_UNUSED(p_Size);
#endif
    }
    ~SmallVolume()
    {
#ifdef Q_OS_LINUX
        if (Mounted)
            ::umount2(Folder.constData(), MNT_DETACH);
#endif
    }
    SmallVolume(SmallVolume const&) = delete;
    SmallVolume& operator=(SmallVolume const&) = delete;

    /// False where this user may not mount.
    bool IsMounted() const
    {
        return Mounted;
    }

private:
    QByteArray Folder;
    bool Mounted = false;
};

/// Takes all the room of a volume but some pages, as long as it lives.
class VolumeFiller {
public:
    explicit VolumeFiller(QString const& p_File, int p_PagesLeft = 0)
        : File(p_File)
    {
        constexpr int c_Page = 4096;

        if (!File.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
            return;
        while (File.write(QByteArray(c_Page, 'x')) == c_Page)
            continue;
        Full = File.resize(File.size() - qint64{p_PagesLeft} * c_Page);
    }
    ~VolumeFiller() { File.remove(); }
    VolumeFiller(VolumeFiller const&) = delete;
    VolumeFiller& operator=(VolumeFiller const&) = delete;

    /// False where it could not take it.
    bool IsFull() const { return Full; }

private:
    QFile File;
    bool Full = false;
};

} // namespace Varnholt::TestSupport
