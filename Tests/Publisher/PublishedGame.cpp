#include "Tests/Publisher/PublishedGame.hpp"

#include "Publisher/Publication/Publication.hpp"
#include "Publisher/Tree/TreeMark.hpp"
#include "Tests/Publisher/FailureOf.hpp"
#include "Tests/Support/FileTools.hpp"
#include "Tests/Support/SampleContent.hpp"

#include <QDirIterator>

#include <chrono>
#include <filesystem>

namespace Varnholt::TestSupport {

namespace {

void Write(QString const& p_Path, QByteArray const& p_Bytes)
{
    if (!WriteFile(p_Path, p_Bytes))
        qFatal("%s cannot be written", qPrintable(p_Path));
}

} // namespace

Tree TreeOf(QString const& p_Folder)
{
    Tree tree;
    QDirIterator entries(p_Folder,
                         QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext()) {
        QString const path = QDir(p_Folder).relativeFilePath(entries.next());
        if (entries.fileInfo().isDir())
            tree[path + '/'] = QByteArray();
        else
            tree[path] = ReadFile(entries.filePath());
    }
    return tree;
}

Tree ForClients(Tree p_Tree)
{
    for (auto file = p_Tree.begin(); file != p_Tree.end();)
        file = Publisher::TreeMark::IsPrivate(file->first) ? p_Tree.erase(file) : std::next(file);
    return p_Tree;
}

void TestObserver::PhaseStarted(QString const& p_Name, qint64)
{
    if (OnPhase)
        OnPhase(p_Name);
}

void TestObserver::BytesRead(qint64 p_Bytes)
{
    Bytes += p_Bytes;
    if (OnBytes)
        OnBytes();
}

void TestObserver::Warned(QString const& p_Sentence)
{
    Warnings += p_Sentence;
}

PublishedGame::PublishedGame()
{
    Options.Source = Temporary.filePath("source");
    Options.Output = Temporary.filePath("output");
    Options.RulesFile = Temporary.filePath("rules.json");
    Options.Local = true;
    Options.Build = {"build_1", "Build 1", 1};
    Put("Game", "the game");
    AddRules("");
}

void PublishedGame::Put(QString const& p_Path, QByteArray const& p_Bytes) const
{
    Write(SourcePath(p_Path), p_Bytes);
}

void PublishedGame::SetRules(QByteArray const& p_Json) const
{
    Write(Options.RulesFile, p_Json);
}

void PublishedGame::AddRules(QByteArray const& p_Rules, QByteArray const& p_Locales) const
{
    SetRules("{\"locales\": " + p_Locales +
             ", \"rules\": [{\"match\": \"Game\", \"flags\": [\"executable\", "
             "\"game-executable\"]}" +
             (p_Rules.isEmpty() ? "" : ", ") + p_Rules + "]}");
}

Publisher::PublicationSummary PublishedGame::Publish()
{
    return Publisher::Publication(Options, Observer).Run();
}

Publisher::PublicationSummary PublishedGame::Publish(QString const& p_Build)
{
    Options.Build.Id = p_Build;
    return Publish();
}

QString PublishedGame::FailureSentence()
{
    return FailureOf([this] { Publish(); }).Sentence;
}

Tree PublishedGame::Published() const
{
    return ForClients(TreeOf(Options.Output));
}

void PublishedGame::Age() const
{
    using namespace std::chrono_literals;
    auto const then = std::filesystem::file_time_type::clock::now() - 1h;
    for (auto const& [path, content] : TreeOf(Options.Source)) {
        if (!path.endsWith('/'))
            std::filesystem::last_write_time(SourcePath(path).toStdString(), then);
    }
}

QByteArray PublishedGame::Read(QString const& p_Path) const
{
    return ReadFile(OutputPath(p_Path));
}

QString PublishedGame::ContentPath(QByteArray const& p_Content)
{
    QString const md5 = SampleContent::Md5(p_Content);
    return QStringLiteral("pelmora_app/files/%1/%2").arg(md5.left(2), md5);
}

QStringList PublishedGame::BuildArguments(QStringList const& p_More, QString const& p_Build) const
{
    return QStringList({"build", "--source", Options.Source, "--output", Options.Output, "--build",
                        p_Build, "--rules", Options.RulesFile}) +
           (p_More.contains("--hosts") ? QStringList() : QStringList("--local")) + p_More;
}

} // namespace Varnholt::TestSupport
