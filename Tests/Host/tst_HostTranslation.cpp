#include "Tests/Host/SessionGame.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QCoreApplication>
#include <QDir>
#include <QTranslator>
#include <QtTest>

namespace Varnholt::TestSupport {

namespace {

/// Marks every text, and remembers the contexts; a text without a context is left alone.
class Marker : public QTranslator {
public:
    Marker() { QCoreApplication::installTranslator(this); }
    ~Marker() override { QCoreApplication::removeTranslator(this); }
    Marker(Marker const&) = delete;
    Marker& operator=(Marker const&) = delete;

    bool isEmpty() const override { return false; }
    QString translate(char const* p_Context, char const* p_Text, char const* /*p_Note*/,
                      int /*p_Number*/) const override
    {
        return QString::fromLatin1(p_Context).startsWith("Varnholt::Host::")
                   ? '<' + QString::fromUtf8(p_Text) + '>'
                   : QString();
    }
};

/// What stands in a text outside of the marks.
QString Unmarked(QString const& p_Text)
{
    QString rest;
    int depth = 0;
    for (QChar const character : p_Text) {
        depth += character == '<' ? 1 : character == '>' ? -1 : 0;
        if (depth == 0 && character != '>')
            rest += character;
    }
    return rest;
}

} // namespace

/// That what the host tells people goes by the application's translators.
class HostTranslationTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void EveryKindOfFailureIsTranslated();
    void EveryPhaseAndEveryNoticeIsTranslated();
    void WhatARunFindsIsTranslated();
    void TheLanguageCanChangeAfterwards();
};

void HostTranslationTest::EveryKindOfFailureIsTranslated()
{
    Marker const marker;
    for (Host::FailureKind const kind : Host::Failure::Kinds()) {
        Host::Failure const failure{kind, "S", "D"};
        QCOMPARE(Unmarked(failure.Sentence()), QString());
        QCOMPARE(Unmarked(failure.Remedy()), QString());
    }
    QVERIFY(Host::Failure({Host::FailureKind::FileUnwritable, "S", {}})
                .Sentence()
                .endsWith("(<cause unknown>)>"));
}

void HostTranslationTest::EveryPhaseAndEveryNoticeIsTranslated()
{
    Marker const marker;
    for (int i = 0; i <= static_cast<int>(Host::RunPhase::Failed); ++i)
        QCOMPARE(Unmarked(PhaseText(static_cast<Host::RunPhase>(i))), QString());
    QCOMPARE(PhaseName(Host::RunPhase::Comparing), QString("comparing"));
    Host::Notice const notice{Host::NoticeKind::GameIncomplete};
    QCOMPARE(notice.Text(),
             QString("<The game is not complete>; <run \"update\" if it does not work>."));
    QCOMPARE(notice.Remedy(), QString("<run \"update\" if it does not work>"));
}

void HostTranslationTest::WhatARunFindsIsTranslated()
{
    SessionGame game;
    game.AddFiles().Publish().PutInstalled();
    QVERIFY(QFile::remove(game.Path("Data/base.MPQ")));
    QVERIFY(QFile::remove(game.Path("readme.txt")));
    game.Put("readme.txt.part/x", "of the user");
    game.Server.Serve("/cdns.info", "<html>");
    game.Server.Script(game.Content.ServerPath("Data/base.MPQ")).Always(Answer::Status(404));
    QVERIFY(game.Open());
    Marker const marker;
    QCOMPARE(game.Run(RequestType::Update), QString("files-given-up"));
    QStringList sentences{game.Sentence()};
    for (Host::FileFinding const& finding : game.Result().Findings)
        sentences += finding.Problem.Sentence();
    QCOMPARE(sentences.size(), 3);
    for (QString const& sentence : sentences)
        QCOMPARE(Unmarked(sentence), QString());
    QVERIFY(sentences.contains(QString("<the file %1readme.txt cannot be written (<a folder stands "
                                       "at %1readme.txt.part>)>")
                                   .arg(game.Folder)));
    QCOMPARE(game.Notices, QStringList("<<The list of mirrors is damaged>; the files come from "
                                       "the default server>."));
    QVERIFY(QDir(game.Path("readme.txt.part")).removeRecursively());
    QCOMPARE(game.Run(RequestType::Check), QString("update-available"));
    QCOMPARE(game.Sentence(), QString("<an update to build Sample build fetches <<2 files> "
                                      "(at least 7 bytes)>>"));
}

void HostTranslationTest::TheLanguageCanChangeAfterwards()
{
    Host::Failure const failure{Host::FailureKind::GameRunning, "/game/", {}};
    {
        Marker const marker;
        QCOMPARE(failure.Sentence(), QString("<the game in /game/ is running>"));
    }
    QCOMPARE(failure.Sentence(), QString("the game in /game/ is running"));
    QCOMPARE(failure.Identifier(), QString("game-running"));
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::HostTranslationTest)
#include "tst_HostTranslation.moc"
