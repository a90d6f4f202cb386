#pragma once

#include "Launcher/Application/HTTP_DownloadFileRequest.hpp"

#include <QString>
#include <QtGlobal>

#include <atomic>

namespace Varnholt::TestSupport {

/// Sets a record's abort flag inside the n-th message that contains a text, on the thread that
/// logs it: in the middle of what the thread is doing. One at a time.
class AbortAtMessage {
public:
    AbortAtMessage(QString const& p_Part, int p_Occurrence)
    {
        s_Part = p_Part;
        s_Left = p_Occurrence;
        s_Request = nullptr;
        s_Before = qInstallMessageHandler(Handle);
    }
    ~AbortAtMessage() { qInstallMessageHandler(s_Before); }
    AbortAtMessage(AbortAtMessage const&) = delete;
    AbortAtMessage& operator=(AbortAtMessage const&) = delete;

    /// To be called before that message can come.
    void SetRequest(Launcher::HTTP_DownloadFileRequest* p_Request) { s_Request = p_Request; }
    static bool HasCome() { return s_Left <= 0; }

private:
    static void Handle(QtMsgType p_Type, QMessageLogContext const& p_Context, QString const& p_Text)
    {
        if (p_Text.contains(s_Part)) {
            if (s_Left == 1 && s_Request != nullptr)
                s_Request.load()->Aborted = true;
            --s_Left; // last: whoever sees it sees the flag
        }
        s_Before(p_Type, p_Context, p_Text);
    }

    inline static QtMessageHandler s_Before = nullptr;
    inline static QString s_Part;
    inline static std::atomic<int> s_Left{0};
    inline static std::atomic<Launcher::HTTP_DownloadFileRequest*> s_Request{nullptr};
};

} // namespace Varnholt::TestSupport
