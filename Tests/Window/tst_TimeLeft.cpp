#include "Host/Window/Pages/TimeLeft.hpp"
#include "Tests/Support/TestMain.hpp"

#include <cmath>

namespace Varnholt::TestSupport {

using Host::TimeLeft;

class TimeLeftTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void IsNotKnownAtFirst();
    void DoesNotJumpWithTheRate();
    void FollowsARateThatHasChanged();
    void IsNotKnownWhileNothingArrives();
    void BeginsAnewWithAnotherMeasure();
};

namespace {

constexpr qint64 c_Step = 500; // milliseconds
constexpr quint64 c_Mebibyte = 1 << 20;
constexpr quint64 c_Total = 1'200 * c_Mebibyte;

/// A job that is looked at twice a second.
struct Job {
    TimeLeft Left;
    qint64 Now = 0;
    quint64 Done = 0;

    void Bring(quint64 p_PerSecond)
    {
        Now += c_Step;
        Done += p_PerSecond * c_Step / 1'000;
        Left.Add(Now, Done, c_Total);
    }
    void BringFor(int p_Seconds, quint64 p_PerSecond)
    {
        for (int i = 0; i < p_Seconds * 1'000 / c_Step; ++i)
            Bring(p_PerSecond);
    }
};

} // namespace

void TimeLeftTest::IsNotKnownAtFirst()
{
    Job job;
    QVERIFY(!job.Left.Seconds());
    job.BringFor(2, c_Mebibyte);
    QVERIFY(!job.Left.Seconds());
    job.BringFor(3, c_Mebibyte);
    QVERIFY(job.Left.Seconds());
    QCOMPARE(*job.Left.Seconds(), 1'195);
}

void TimeLeftTest::DoesNotJumpWithTheRate()
{
    constexpr double c_MostJump = 0.02; // of what was told

    Job job;
    job.BringFor(6, 10 * c_Mebibyte);
    qint64 before = *job.Left.Seconds();
    for (int i = 0; i < 120; ++i) {
        job.Bring(i % 4 < 2 ? c_Mebibyte : 19 * c_Mebibyte);
        qint64 const now = *job.Left.Seconds();
        QVERIFY2(std::abs(now - before) <= 1 + c_MostJump * static_cast<double>(before),
                 qPrintable(QString("%1 after %2").arg(now).arg(before)));
        before = now;
    }
    qint64 const real = static_cast<qint64>((c_Total - job.Done) / (10 * c_Mebibyte));
    QVERIFY2(std::abs(before - real) <= real / 5, qPrintable(QString::number(before)));
}

void TimeLeftTest::FollowsARateThatHasChanged()
{
    Job job;
    job.BringFor(30, 10 * c_Mebibyte);
    job.BringFor(60, 5 * c_Mebibyte);
    qint64 const real = static_cast<qint64>((c_Total - job.Done) / (5 * c_Mebibyte));
    QVERIFY2(std::abs(*job.Left.Seconds() - real) <= real / 10,
             qPrintable(QString("%1, really %2").arg(*job.Left.Seconds()).arg(real)));
}

void TimeLeftTest::IsNotKnownWhileNothingArrives()
{
    Job job;
    job.BringFor(10, c_Mebibyte);
    job.BringFor(5, 0);
    QVERIFY(job.Left.Seconds());
    job.BringFor(6, 0);
    QVERIFY(!job.Left.Seconds());
    job.BringFor(1, c_Mebibyte);
    QVERIFY(job.Left.Seconds());
}

void TimeLeftTest::BeginsAnewWithAnotherMeasure()
{
    Job job;
    job.BringFor(10, c_Mebibyte);
    job.Left.Add(job.Now + c_Step, job.Done, c_Total / 2);
    QVERIFY(!job.Left.Seconds());
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::TimeLeftTest)
#include "tst_TimeLeft.moc"
