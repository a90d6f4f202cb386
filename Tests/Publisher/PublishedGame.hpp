#pragma once

#include "Publisher/Publication/PublicationObserver.hpp"
#include "Publisher/Publication/PublicationSummary.hpp"
#include "Publisher/Publication/PublishOptions.hpp"

#include <QByteArray>
#include <QMetaType>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <atomic>
#include <functional>
#include <map>

namespace Varnholt::TestSupport {

/// What lies below a folder: contents by relative path. Folders end in "/" and have none.
using Tree = std::map<QString, QByteArray>;
Tree TreeOf(QString const& p_Folder);
/// Without what the publisher keeps for itself.
Tree ForClients(Tree p_Tree);

/// Calls what a test has set and keeps the warnings.
class TestObserver : public Publisher::PublicationObserver {
public:
    void PhaseStarted(QString const& p_Name, qint64 p_Bytes) override;
    void BytesRead(qint64 p_Bytes) override;
    void Warned(QString const& p_Sentence) override;

    std::function<void(QString const& p_Phase)> OnPhase;
    std::function<void()> OnBytes; ///< on any thread
    QStringList Warnings;
    std::atomic<qint64> Bytes{0}; ///< read so far
};

/// A source folder that holds the game's executable, rules that say so, and a tree to publish in.
class PublishedGame {
public:
    PublishedGame();

    /// Writes a file of the source folder.
    void Put(QString const& p_Path, QByteArray const& p_Bytes) const;
    /// Replaces the rules file.
    void SetRules(QByteArray const& p_Json) const;
    /// Adds rules, JSON objects with commas between them, to the one of the executable.
    void AddRules(QByteArray const& p_Rules, QByteArray const& p_Locales = "{}") const;

    /// \throws Publisher::Failure
    Publisher::PublicationSummary Publish();
    /// Publishes under another build. \throws Publisher::Failure
    Publisher::PublicationSummary Publish(QString const& p_Build);
    /// The sentence with which publishing fails, null when it does not.
    QString FailureSentence();

    /// The arguments that publish it by the program; its content is on this machine unless they
    /// name hosts.
    QStringList BuildArguments(QStringList const& p_More = {},
                               QString const& p_Build = "build_1") const;
    QString SourcePath(QString const& p_Path) const { return Options.Source + '/' + p_Path; }
    QString OutputPath(QString const& p_Path) const { return Options.Output + '/' + p_Path; }
    /// The published tree, without what the publisher keeps for itself.
    Tree Published() const;
    QString IndexName() const { return ".varnholt-publish." + Options.AppId + ".index"; }
    /// Makes every source file an hour old: a file that was just written is not indexed.
    void Age() const;
    QByteArray Read(QString const& p_Path) const;
    /// Where content lies in the tree.
    static QString ContentPath(QByteArray const& p_Content);

    QTemporaryDir Temporary;
    Publisher::PublishOptions Options;
    TestObserver Observer;
};

/// What a row of a test does to its game.
using GameChange = std::function<void(PublishedGame& p_Game)>;

} // namespace Varnholt::TestSupport

Q_DECLARE_METATYPE(Varnholt::TestSupport::GameChange)
