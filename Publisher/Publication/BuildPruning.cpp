#include "Publisher/Publication/BuildPruning.hpp"

#include "Publisher/ReadFile.hpp"
#include "Publisher/Signatures/DocumentCheck.hpp"
#include "Publisher/Tree/BuildCatalog.hpp"
#include "Publisher/Tree/ContentStaging.hpp"
#include "Publisher/Tree/StorageSync.hpp"
#include "Publisher/Tree/TreeMark.hpp"
#include "Publisher/Tree/TreeTransaction.hpp"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QSet>

namespace Varnholt::Publisher {

namespace {

void Remove(QString const& p_File)
{
    QFile file(p_File);
    if (!file.remove())
        throw Failure(p_File + QStringLiteral(": cannot be removed: ") + file.errorString());
}

/// Whether the publisher gives content such names; files of others stay.
bool IsContent(QString const& p_Location)
{
    static QRegularExpression const c_Location(
        QRegularExpression::anchoredPattern(QStringLiteral("files/([0-9A-F]{2})/\\1[0-9A-F]{30}")));
    return c_Location.match(p_Location).hasMatch();
}

/// The work of one call.
class BuildPruning {
public:
    explicit BuildPruning(PruneOptions const& p_Options)
        : Options(p_Options)
        , Catalog(p_Options.Output, p_Options.AppId)
    {
    }

    PruneSummary Run()
    {
        TreeMark(Options.Output).CheckIsTree();
        std::optional<TreeTransaction> tree;
        if (!Options.DryRun)
            tree.emplace(Options.Output);
        Summary = PruneSummary();
        Summary.Builds = Chosen();
        QStringList kept = Catalog.Builds();
        for (QString const& build : qAsConst(Summary.Builds))
            kept.removeOne(build);
        Summary.KeptBuilds = kept.size();

        // Before anything goes: a manifest that cannot be read does not tell what it uses.
        QSet<QString> const used = ContentOf(kept);
        if (tree) {
            Note(*tree);
            for (QString const& build : qAsConst(Summary.Builds))
                RemoveBuild(build);
            // Else a power failure could bring back a manifest whose content is gone.
            StorageSync(Options.Output);
        }
        RemoveContent(used);
        RemoveStaged();
        return Summary;
    }

private:
    QSet<QString> Served() const
    {
        QSet<QString> served;
        for (bool const isDevChannel : {false, true}) {
            QString const build = Catalog.BuildOn(isDevChannel);
            if (!build.isNull())
                served.insert(build);
        }
        return served;
    }

    QStringList Chosen() const
    {
        QSet<QString> const served = Served();
        if (!Options.Keep) {
            CheckNamed(served);
            QStringList named = Options.Builds;
            named.removeDuplicates();
            return named;
        }
        QStringList const builds = Catalog.Builds();
        QStringList old;
        for (QString const& build : builds.mid(0, qMax(0, builds.size() - *Options.Keep))) {
            if (!served.contains(build))
                old += build;
        }
        return old;
    }

    void CheckNamed(QSet<QString> const& p_Served) const
    {
        for (QString const& build : Options.Builds) {
            Catalog.CheckHas(build);
            if (p_Served.contains(build)) {
                throw Failure(QStringLiteral("%1: the build %2 is on offer and cannot be removed")
                                  .arg(Catalog.ManifestPath(build), build));
            }
        }
    }

    QSet<QString> ContentOf(QStringList const& p_Builds) const
    {
        QSet<QString> content;
        for (QString const& build : p_Builds)
            content.unite(Catalog.Read(build).Content);
        return content;
    }

    /// Before anything goes, so that the name of a removed build is not given to another.
    void Note(TreeTransaction& p_Tree) const
    {
        BuildRecord record = Catalog.Record();
        record.SetOrder(Catalog.Builds());
        for (QString const& build : Summary.Builds)
            record.Remove(build, ReadFile(Catalog.ManifestPath(build)));
        p_Tree.AddText(record.Text(), record.Path());
        p_Tree.Commit();
    }

    void RemoveBuild(QString const& p_Build) const
    {
        QString const manifest = Catalog.ManifestPath(p_Build);
        Remove(manifest);
        QFile::remove(DocumentCheck::SignatureOf(manifest));
        // Stays when somebody has put something beside the manifest.
        QDir().rmdir(QFileInfo(manifest).path());
    }

    /// What a stopped run has left and no later one has used.
    void RemoveStaged()
    {
        ContentStaging const staging(Options.Output, Options.AppId);
        for (QFileInfo const& file : staging.Files()) {
            ++Summary.ContentFiles;
            Summary.ContentBytes += file.size();
        }
        if (!Options.DryRun)
            staging.Remove();
    }

    void RemoveContent(QSet<QString> const& p_Used)
    {
        QDir const folder(Catalog.Folder());
        QStringList const folders = QDir(folder.filePath(QStringLiteral("files")))
                                        .entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        for (QString const& name : folders) {
            QString const path = folder.filePath(QStringLiteral("files/") + name);
            QDirIterator files(path, QDir::Files);
            while (files.hasNext()) {
                QString const file = files.next();
                QString const location = QStringLiteral("files/%1/%2").arg(name, files.fileName());
                if (p_Used.contains(location) || !IsContent(location))
                    continue;
                ++Summary.ContentFiles;
                Summary.ContentBytes += files.fileInfo().size();
                if (!Options.DryRun)
                    Remove(file);
            }
            if (!Options.DryRun)
                QDir().rmdir(path);
        }
    }

    PruneOptions const& Options;
    BuildCatalog Catalog;
    PruneSummary Summary;
};

} // namespace

PruneSummary PruneBuilds(PruneOptions const& p_Options)
{
    return BuildPruning(p_Options).Run();
}

} // namespace Varnholt::Publisher
