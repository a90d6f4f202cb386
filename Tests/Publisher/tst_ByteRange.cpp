#include "Publisher/Serving/ByteRange.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

#include <limits>

namespace Varnholt::Publisher {

class ByteRangeTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void KnowsWhichBytesAreMeant_data();
    void KnowsWhichBytesAreMeant();
    void KnowsWhenThereAreNone_data();
    void KnowsWhenThereAreNone();
};

void ByteRangeTest::KnowsWhichBytesAreMeant_data()
{
    QTest::addColumn<qint64>("first");
    QTest::addColumn<qint64>("last");
    QTest::addColumn<qint64>("size");
    QTest::addColumn<qint64>("offset");
    QTest::addColumn<qint64>("length");
    auto const add = [](char const* p_Name, qint64 p_First, qint64 p_Last, qint64 p_Size,
                        qint64 p_Offset, qint64 p_Length) {
        QTest::newRow(p_Name) << p_First << p_Last << p_Size << p_Offset << p_Length;
    };
    qint64 const large = Q_INT64_C(5'000'000'000);
    add("first byte", 0, 0, 10, 0, 1);
    add("middle", 2, 4, 10, 2, 3);
    add("last byte", 9, 9, 10, 9, 1);
    add("all", 0, 9, 10, 0, 10);
    add("open", 5, -1, 10, 5, 5);
    add("open at the last byte", 9, -1, 10, 9, 1);
    add("beyond the end", 8, 100, 10, 8, 2);
    add("suffix", -1, 3, 10, 7, 3);
    add("suffix of all", -1, 10, 10, 0, 10);
    add("suffix longer than the file", -1, 100, 10, 0, 10);
    add("beyond 32 bits", large, -1, large + 7, large, 7);
    add("last of all numbers", 0, std::numeric_limits<qint64>::max(), large, 0, large);
}

void ByteRangeTest::KnowsWhichBytesAreMeant()
{
    QFETCH(qint64, first);
    QFETCH(qint64, last);
    QFETCH(qint64, size);
    QFETCH(qint64, offset);
    QFETCH(qint64, length);
    std::optional<ByteRange> const range = ByteRange::Of(first, last, size);
    QVERIFY(range);
    QCOMPARE(range->Offset, offset);
    QCOMPARE(range->Length, length);
}

void ByteRangeTest::KnowsWhenThereAreNone_data()
{
    QTest::addColumn<qint64>("first");
    QTest::addColumn<qint64>("last");
    QTest::addColumn<qint64>("size");
    auto const add = [](char const* p_Name, qint64 p_First, qint64 p_Last, qint64 p_Size) {
        QTest::newRow(p_Name) << p_First << p_Last << p_Size;
    };
    add("at the end", 10, -1, 10);
    add("after the end", 11, 20, 10);
    add("empty suffix", -1, 0, 10);
    add("neither first nor last", -1, -1, 10);
    add("last before first", 4, 2, 10);
    add("of an empty file", 0, -1, 0);
    add("first byte of an empty file", 0, 0, 0);
    add("suffix of an empty file", -1, 5, 0);
}

void ByteRangeTest::KnowsWhenThereAreNone()
{
    QFETCH(qint64, first);
    QFETCH(qint64, last);
    QFETCH(qint64, size);
    QVERIFY(!ByteRange::Of(first, last, size));
}

} // namespace Varnholt::Publisher

VARNHOLT_TEST(Varnholt::Publisher::ByteRangeTest)
#include "tst_ByteRange.moc"
