#pragma once

#include <QDir>
#include <QString>

namespace Varnholt::TestSupport {

/// Makes a folder the process's current one as long as it lives.
class ScopedCurrentFolder {
public:
    explicit ScopedCurrentFolder(QString const& p_Folder)
        : Before(QDir::currentPath())
    {
        QDir::setCurrent(p_Folder);
    }
    ~ScopedCurrentFolder() { QDir::setCurrent(Before); }
    ScopedCurrentFolder(ScopedCurrentFolder const&) = delete;
    ScopedCurrentFolder& operator=(ScopedCurrentFolder const&) = delete;

private:
    QString Before;
};

} // namespace Varnholt::TestSupport
