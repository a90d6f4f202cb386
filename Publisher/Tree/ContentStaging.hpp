#pragma once

#include <QFileInfo>
#include <QString>

#include <atomic>

namespace Varnholt::Publisher {

/// Content on its way into a tree. It is named by its digest once it is whole, and stays when the
/// run ends without publishing it: the next run goes on from there.
class ContentStaging {
public:
    /// \param p_Root the tree, which the caller has locked
    ContentStaging(QString const& p_Root, QString const& p_AppId);

    /// Removes what cannot be relied on: files that are not whole, and all of them when the system
    /// has restarted, as their bytes may never have reached the disk.
    void Sift() const;

    /// Makes the folder. Any thread. \throws Failure
    void Make();
    void Remove() const;

    /// Where content of that digest is, or would be.
    QString PathOf(QString const& p_Md5) const;
    /// Where the digests of what was read are noted down.
    QString JournalPath() const;
    bool Holds(QString const& p_Md5, qint64 p_Size) const;
    /// All of it, whole or only begun.
    QFileInfoList Files() const;
    /// A name for content that is begun. Any thread. \throws Failure
    QString NewFile();

private:
    QString Folder;
    std::atomic<bool> Made{false};
    std::atomic<int> NewFiles{0};
};

/// A file that is being written; it goes unless it is kept.
class StagedFile {
public:
    /// \throws Failure
    explicit StagedFile(QString const& p_Path);
    ~StagedFile();
    StagedFile(StagedFile const&) = delete;
    StagedFile& operator=(StagedFile const&) = delete;

    /// Blocks of zeros take no room. \throws Failure
    void Write(char const* p_Data, qint64 p_Bytes);

    /// Gives it its name: it is whole, and everybody may read it. \throws Failure
    void KeepAs(QString const& p_Path);

private:
    [[noreturn]] void Fail() const;
    void Close();

    QString Path;
    int File;
    qint64 Size = 0;
    bool EndsInHole = false;
};

} // namespace Varnholt::Publisher
