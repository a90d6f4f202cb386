#include "GameModules/TransferSlot.hpp"
#include "Launcher/Application/HTTP_DownloadFileRequest.hpp"
#include "Tests/Support/TestMain.hpp"

#include <QtTest>

namespace Varnholt::TestSupport {

using Launcher::HTTP_DownloadFileRequest;
using Launcher::TransferSlot;

class TransferSlotTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();

    void AnEmptySlotMayStart();
    void OneTransferAtATime();
    void AStartBehindAStoppedTransferIsOwedOnce();
    void AnOwedStartCanBeForgotten();
    void ReplacedTransfersAreStopped();
    void OnesSetAsideGoOnUntilTheyAreStopped();
    void RetiredTheyAreGone();
    void WithoutATransferNothingIsSetAside();

private:
    std::unique_ptr<HTTP_DownloadFileRequest> Request;
    HTTP_DownloadFileRequest* Current = nullptr;
    std::unique_ptr<TransferSlot> Slot;
};

void TransferSlotTest::init()
{
    Request = std::make_unique<HTTP_DownloadFileRequest>();
    Request->AbortAcknowledged = true; // as if its thread had ended just now
    Current = Request.get();
    Slot = std::make_unique<TransferSlot>(Current);
}

void TransferSlotTest::AnEmptySlotMayStart()
{
    Current = nullptr;
    QVERIFY(Slot->MayStart());
    QVERIFY(!Slot->TakeStart());
}

void TransferSlotTest::OneTransferAtATime()
{
    QVERIFY(!Slot->MayStart());
    QVERIFY(!Slot->TakeStart());
    QVERIFY(!Request->Aborted);
}

void TransferSlotTest::AStartBehindAStoppedTransferIsOwedOnce()
{
    Request->Abort();
    QVERIFY(!Slot->MayStart());
    QVERIFY(Slot->TakeStart());
    QVERIFY(!Slot->TakeStart());
}

void TransferSlotTest::AnOwedStartCanBeForgotten()
{
    Request->Abort();
    QVERIFY(!Slot->MayStart());
    Slot->ForgetStart();
    QVERIFY(!Slot->TakeStart());
}

void TransferSlotTest::ReplacedTransfersAreStopped()
{
    Slot->Replace();
    QVERIFY(Request->Aborted);
    QVERIFY(Slot->IsAside(Request.get()));
    QCOMPARE(Slot->AsideCount(), std::size_t{1});
    QVERIFY(Current == nullptr);
    QVERIFY(Slot->MayStart());
}

void TransferSlotTest::OnesSetAsideGoOnUntilTheyAreStopped()
{
    Slot->SetAside();
    QVERIFY(!Request->Aborted);
    QVERIFY(Slot->IsAside(Request.get()));
    Slot->StopAside();
    QVERIFY(Request->Aborted);
    QVERIFY(Slot->IsAside(Request.get())); // until it is retired
}

void TransferSlotTest::RetiredTheyAreGone()
{
    QVERIFY(Slot->Retire(Request.get()));
    QVERIFY(Current == nullptr);
    Current = Request.get();
    Slot->SetAside();
    QVERIFY(!Slot->Retire(Request.get()));
    QVERIFY(!Slot->IsAside(Request.get()));
}

void TransferSlotTest::WithoutATransferNothingIsSetAside()
{
    Current = nullptr;
    Slot->Replace();
    QCOMPARE(Slot->AsideCount(), std::size_t{0});
}

} // namespace Varnholt::TestSupport

VARNHOLT_TEST(Varnholt::TestSupport::TransferSlotTest)
#include "tst_TransferSlot.moc"
