#include "Signing/TrustedComment.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

using Signing::TrustedComment;

class TrustedCommentTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void ItIsOneLineOfFixedOrder();
    void ValuesComeBackAsTheyWere();
    void UnknownKeysBehindAreSkipped();
    void OthersAreNone_data();
    void OthersAreNone();
};

namespace {

QByteArray const c_Text = "varnholt 1 document=version game=pelmora platform=mac channel=live "
                          "build=1.2 sequence=7 time=2026-11-22T10:00:00Z";

} // namespace

void TrustedCommentTest::ItIsOneLineOfFixedOrder()
{
    TrustedComment comment;
    comment.Document = TrustedComment::Role::Version;
    comment.Game = "pelmora";
    comment.Platform = "mac";
    comment.Channel = "live";
    comment.Build = "1.2";
    comment.Sequence = 7;
    comment.Time = QDateTime({2026, 11, 22}, {10, 0}, Qt::UTC);
    QCOMPARE(comment.ToText(), c_Text);
    comment.Expires = comment.Time.addDays(30);
    QCOMPARE(comment.ToText(), c_Text + " expires=2026-12-22T10:00:00Z");
}

void TrustedCommentTest::ValuesComeBackAsTheyWere()
{
    TrustedComment comment = *TrustedComment::FromText(c_Text);
    comment.Document = TrustedComment::Role::RealmList;
    comment.Game = "two words\n100%=ü";
    comment.Build.clear();
    comment.Sequence = ~0ull;
    comment.Expires = comment.Time.addSecs(1);
    QByteArray const text = comment.ToText();
    QVERIFY(text.contains("game=two%20words%0A100%25=ü "));
    auto const read = TrustedComment::FromText(text);
    QVERIFY(read);
    QCOMPARE(read->ToText(), text);
    QCOMPARE(read->Game, comment.Game);
    QCOMPARE(read->Sequence, comment.Sequence);
    QCOMPARE(*read->Expires, *comment.Expires);
}

void TrustedCommentTest::UnknownKeysBehindAreSkipped()
{
    auto const comment =
        TrustedComment::FromText(c_Text + " mood=good expires=2026-12-22T10:00:00Z more");
    QVERIFY(comment);
    QCOMPARE(*comment->Expires, QDateTime({2026, 12, 22}, {10, 0}, Qt::UTC));
}

void TrustedCommentTest::OthersAreNone_data()
{
    QTest::addColumn<QByteArray>("Part");
    QTest::addColumn<QByteArray>("Instead");

    AddRow("another kind", QByteArray("varnholt 1"), QByteArray("varnholt 2"));
    AddRow("unknown document", QByteArray("version"), QByteArray("licence"));
    AddRow("no game", QByteArray("game=pelmora "), QByteArray());
    AddRow("two blanks", QByteArray(" game"), QByteArray("  game"));
    AddRow("another order", QByteArray("game=pelmora platform=mac"),
           QByteArray("platform=mac game=pelmora"));
    AddRow("unknown channel", QByteArray("live"), QByteArray("beta"));
    AddRow("no number", QByteArray("=7"), QByteArray("=-7"));
    AddRow("a number too great", QByteArray("=7"), QByteArray("=18446744073709551616"));
    AddRow("local time", QByteArray("00Z"), QByteArray("00"));
    AddRow("no such day", QByteArray("11-22"), QByteArray("11-31"));
    AddRow("no time", QByteArray(" time=2026-11-22T10:00:00Z"), QByteArray());
    AddRow("a strange end", QByteArray("00Z"), QByteArray("00Z expires=never"));
}

void TrustedCommentTest::OthersAreNone()
{
    QFETCH(QByteArray, Part);
    QFETCH(QByteArray, Instead);
    QVERIFY(TrustedComment::FromText(c_Text));
    QVERIFY(!TrustedComment::FromText(QByteArray(c_Text).replace(Part, Instead)));
}

} // namespace Varnholt::TestSupport

#include "tst_TrustedComment.moc"

VARNHOLT_TEST(Varnholt::TestSupport::TrustedCommentTest)
