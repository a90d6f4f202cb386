#include "Publisher/Source/SourceScan.hpp"

#include "Publisher/Failure.hpp"
#include "Publisher/Source/NativePath.hpp"
#include "Publisher/Source/PathChecks.hpp"
#include "Publisher/Source/SourceReader.hpp"

#include <algorithm>
#include <cerrno>

#include <sys/stat.h>

namespace Varnholt::Publisher {

namespace fs = std::filesystem;

namespace {

bool IsAtOrBelow(fs::path const& p_Path, fs::path const& p_Folder)
{
    return std::mismatch(p_Folder.begin(), p_Folder.end(), p_Path.begin(), p_Path.end()).first ==
           p_Folder.end();
}

Failure FailureOf(QString const& p_Path, std::error_code const& p_Error)
{
    return Failure(p_Path + QStringLiteral(": cannot be read: ") +
                   QString::fromStdString(p_Error.message()));
}

class SourceScan {
public:
    SourceScan(QString const& p_Folder, Treat const& p_Treat)
        : Root(NativePath::From(p_Folder))
        , TreatmentOf(p_Treat)
    {
    }

    std::vector<BuildFile> Run()
    {
        QString const shown = NativePath::ToText(Root);
        std::error_code error;
        fs::path const root = fs::canonical(Root, error);
        if (error)
            throw Failure(shown + QStringLiteral(": the source folder does not exist"));
        if (!fs::is_directory(root))
            throw Failure(shown + QStringLiteral(": the source is not a folder"));
        Root = root;
        Files.clear();
        ScanFolder(Root, std::string());
        if (Files.empty())
            throw Failure(shown + QStringLiteral(": the source holds no file to publish"));

        // Places below one folder, so that their bytes are in the order of the paths'.
        std::sort(Files.begin(), Files.end(), [](BuildFile const& p_One, BuildFile const& p_Two) {
            return p_One.Source.Location < p_Two.Source.Location;
        });
        PathChecks::CheckCollisions(Files);
        return std::move(Files);
    }

private:
    void ScanFolder(fs::path const& p_Folder, std::string const& p_Prefix)
    {
        std::error_code error;
        OpenFolders.push_back(fs::canonical(p_Folder, error));
        fs::directory_iterator entry;
        if (!error)
            entry = fs::directory_iterator(p_Folder, error);
        while (!error && entry != fs::directory_iterator()) {
            ScanEntry(*entry, p_Prefix + entry->path().filename().string());
            entry.increment(error);
        }
        if (error)
            throw FailureOf(NativePath::ToText(p_Folder), error);
        OpenFolders.pop_back();
    }

    void ScanEntry(fs::directory_entry const& p_Entry, std::string const& p_Path)
    {
        std::error_code error;
        bool const isLink = p_Entry.is_symlink(error);
        QString const path = QString::fromStdString(p_Path);
        if (!isLink && p_Entry.is_directory(error)) {
            ScanFolder(p_Entry.path(), p_Path + '/');
            return;
        }
        FileTreatment const treatment = TreatmentOf(path);
        if (treatment.Excluded)
            return;
        if (isLink) {
            CheckLink(p_Entry.path(), path);
            if (p_Entry.is_directory(error)) {
                ScanFolder(p_Entry.path(), p_Path + '/');
                return;
            }
        }
        PathChecks::CheckPath(QByteArray::fromStdString(p_Path));
        if (!p_Entry.is_regular_file(error))
            throw Failure(path + QStringLiteral(": is neither a file nor a folder"));

        struct stat status = {};
        if (::stat(p_Entry.path().c_str(), &status) != 0)
            throw FailureOf(path, std::error_code(errno, std::generic_category()));
        SourceFile const file{path,           p_Entry.path(),
                              status.st_size, SourceReader::ModificationTime(status),
                              status.st_ino,  SourceReader::ChangeTime(status)};
        Files.push_back({file, treatment, QString()});
    }

    void CheckLink(fs::path const& p_Link, QString const& p_Path) const
    {
        std::error_code error;
        fs::path const target = fs::canonical(p_Link, error);
        if (error)
            throw Failure(p_Path + QStringLiteral(": the symbolic link leads nowhere"));
        if (!IsAtOrBelow(target, Root))
            throw Failure(p_Path +
                          QStringLiteral(": the symbolic link leads out of the source folder"));
        if (std::find(OpenFolders.begin(), OpenFolders.end(), target) != OpenFolders.end())
            throw Failure(p_Path +
                          QStringLiteral(": the symbolic link leads to a folder that holds it"));
    }

    std::filesystem::path Root;
    Treat const& TreatmentOf;
    std::vector<std::filesystem::path> OpenFolders; ///< canonical, from the root to the current
    std::vector<BuildFile> Files;
};

} // namespace

std::vector<BuildFile> ScanSource(QString const& p_Folder, Treat const& p_Treat)
{
    return SourceScan(p_Folder, p_Treat).Run();
}

} // namespace Varnholt::Publisher
