#include "Publisher/Source/ParallelFor.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace Varnholt::Publisher {

class ParallelForTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void CallsEveryIndexOnce_data();
    void CallsEveryIndexOnce();
    void AnExceptionArrivesAndNothingFurtherStarts();
    void OfSeveralExceptionsTheFirstArrives();
};

void ParallelForTest::CallsEveryIndexOnce_data()
{
    QTest::addColumn<int>("count");
    for (int const count : {0, 1, 2, 1000})
        QTest::addRow("%d", count) << count;
}

void ParallelForTest::CallsEveryIndexOnce()
{
    QFETCH(int, count);
    std::vector<std::atomic<int>> calls(static_cast<std::size_t>(count));
    ParallelFor(calls.size(), [&calls](std::size_t p_Index) { ++calls[p_Index]; });
    for (std::atomic<int> const& call : calls)
        QCOMPARE(call.load(), 1);
}

void ParallelForTest::AnExceptionArrivesAndNothingFurtherStarts()
{
    std::atomic<int> started{0};
    std::atomic<bool> thrown{false};
    std::string text;
    try {
        ParallelFor(100000, [&](std::size_t p_Index) {
            ++started;
            if (p_Index == 3) {
                thrown = true;
                throw std::runtime_error("three");
            }
            // Those beside it cannot run through before it.
            while (p_Index > 3 && !thrown)
                std::this_thread::yield();
        });
    } catch (std::runtime_error const& error) {
        text = error.what();
    }
    QCOMPARE(text, std::string("three"));
    QVERIFY2(started < 100000, qPrintable(QString::number(started)));
}

void ParallelForTest::OfSeveralExceptionsTheFirstArrives()
{
    for (int i = 0; i < 50; ++i) {
        int index = -1;
        try {
            ParallelFor(100, [](std::size_t p_Index) { throw static_cast<int>(p_Index); });
        } catch (int thrown) {
            index = thrown;
        }
        QCOMPARE(index, 0);
    }
}

} // namespace Varnholt::Publisher

VARNHOLT_TEST(Varnholt::Publisher::ParallelForTest)
#include "tst_ParallelFor.moc"
