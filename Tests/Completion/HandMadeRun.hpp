#pragma once

#include "Tests/Runs/Game.hpp"

namespace Varnholt::TestSupport {

/// A run whose transfers the test plays itself: it puts a ".part" file down and reports its end.
class HandMadeRun : public Game {
public:
    HandMadeRun()
        : Game(TestHost::Worker::ByHand)
    {
    }

    /// Makes the build's base or streamed files the list that is being fetched.
    void List(bool p_Base = true)
    {
        Publish();
        Install();
        App.GetInstallationPath();
        App.IsDownloadingBase = p_Base;
        App.FilesToDownload = p_Base ? App.Manifest.Files : App.Manifest.StreamedFiles;
    }

    QString CurrentFile() const { return App.FilesToDownload[App.CurrentDownloadIndex].Path; }
    QString PendingList() const
    {
        return App.IsDownloadingBase ? QStringLiteral("ToDownloadBase.db")
                                     : QStringLiteral("ToDownload.db");
    }

    /// Ends the transfer of the current file with these bytes as its ".part" file.
    void Complete(QByteArray const& p_Part)
    {
        Put(CurrentFile() + QLatin1String(".part"), p_Part);
        Launcher::HTTP_DownloadFileRequest request;
        request.ContentLength = static_cast<quint64>(p_Part.size());
        request.Continuable = false;
        Complete(request);
    }
    /// Ends the transfer of the current file with this record.
    void Complete(Launcher::HTTP_DownloadFileRequest& p_Request)
    {
        App.CurrentDownload = &p_Request;
        App.App_OnHTTPDownloadProgressComplete(&p_Request);
    }
    /// Fails the current file so many times in a row.
    void Fail(int p_Times)
    {
        for (int i = 0; i < p_Times; ++i)
            Complete(QByteArray("wrong"));
    }
    /// Messages that name a file behind a text.
    int Logged(QString const& p_Text, QString const& p_File) const
    {
        return Log.Texts()
            .filter(p_Text)
            .filter(Content.Location(p_File) + QLatin1Char('"'))
            .size();
    }
};

} // namespace Varnholt::TestSupport
