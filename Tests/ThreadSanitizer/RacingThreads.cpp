// Threads that share a plain field, each time ordered by another means of Qt's, or by none:
// racing-threads CASE. Ends with the sanitizer's exit status.

#include "Tests/ThreadSanitizer/RacingThreads.hpp"

#include <QCoreApplication>
#include <QMap>

#include <cstdio>

using namespace Varnholt::RacingThreads;

int main(int p_Count, char** p_Arguments)
{
    QCoreApplication const application(p_Count, p_Arguments);
    QMap<QString, void (*)()> const cases{
        {QStringLiteral("no-order"), NoOrder},
        {QStringLiteral("other-mutex"), OtherMutex},
        {QStringLiteral("both-only-read"), BothOnlyRead},
        {QStringLiteral("other-sender"), OtherSender},
        {QStringLiteral("behind-the-signal"), BehindTheSignal},
        {QStringLiteral("queued-signal"), QueuedSignal},
        {QStringLiteral("queued-argument"), QueuedArgument},
        {QStringLiteral("sender-gone"), SenderGone},
        {QStringLiteral("queued-call"), QueuedCall},
        {QStringLiteral("blocking-call"), BlockingCall},
        {QStringLiteral("deleted-later"), DeletedLater},
        {QStringLiteral("direct-call-once-connected"), DirectCallOnceConnected},
        {QStringLiteral("told-to-end"), ToldToEnd},
        {QStringLiteral("end-of-pool"), EndOfPool},
        {QStringLiteral("end-of-thread"), EndOfThread},
        {QStringLiteral("mutex"), Mutex},
        {QStringLiteral("recursive-mutex"), RecursiveMutex},
        {QStringLiteral("writer-after-reader"), WriterAfterReader},
        {QStringLiteral("reader-after-writers"), ReaderAfterWriters},
        {QStringLiteral("semaphore"), Semaphore},
    };
    auto const run = cases.value(QString::fromLocal8Bit(p_Arguments[p_Count - 1]));
    if (run == nullptr)
        return 2;
    run();
    std::puts(g_Field > 0 ? "ran" : "did nothing");
    return 0;
}
