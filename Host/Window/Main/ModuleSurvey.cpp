#include "Host/Window/Main/ModuleSurvey.hpp"

#include "Host/Core/Module/ModuleLoader.hpp"
#include "Host/Window/Main/RunText.hpp"

#include <QFileInfo>

namespace Varnholt::Host {

namespace {

using Rows = QVector<QPair<QString, QString>>;

QString Value(Rows const& p_Rows, QLatin1String p_Name)
{
    for (auto const& row : p_Rows)
        if (row.first == p_Name)
            return row.second;
    return {};
}

QImage Picture(ModuleInfo const& p_Info, QLatin1String p_Name)
{
    QString const path = Value(p_Info.Images, p_Name);
    return path.isEmpty() ? QImage() : QImage(path);
}

ModuleCard CardOf(ModuleInfo const& p_Info)
{
    ModuleCard card;
    card.File = p_Info.File;
    card.Name = p_Info.Name;
    card.Background =
        Picture(p_Info, QLatin1String("background")).convertToFormat(QImage::Format_RGB32);
    card.Icon = Picture(p_Info, QLatin1String("icon"));
    card.SelectedIcon = Picture(p_Info, QLatin1String("selected icon"));
    card.Placement = Value(p_Info.Presentation, QLatin1String("background placement"));
    card.Palette = PagePalette::Of(Value(p_Info.Presentation, QLatin1String("theme colour")),
                                   Value(p_Info.Presentation, QLatin1String("background colour")),
                                   card.SelectedIcon.isNull() ? card.Icon : card.SelectedIcon);
    return card;
}

} // namespace

ModuleSurvey::ModuleSurvey(QObject* p_Parent)
    : QObject(p_Parent)
    , Worker(new QObject)
{
    qRegisterMetaType<ModuleCard>("Varnholt::Host::ModuleCard");
    Worker->moveToThread(&Thread);
    connect(&Thread, &QThread::finished, Worker, &QObject::deleteLater);
    Thread.start();
}

ModuleSurvey::~ModuleSurvey()
{
    Thread.quit();
    Thread.wait();
}

void ModuleSurvey::Look(QStringList const& p_Files)
{
    for (QString const& file : p_Files)
        QMetaObject::invokeMethod(Worker, [this, file] { LookAt(file); });
    QMetaObject::invokeMethod(Worker, [this] { Q_EMIT Finished(); });
}

/// Called on the thread.
void ModuleSurvey::LookAt(QString const& p_File)
{
    ModuleLoader loader;
    if (auto const failure = loader.Load(p_File)) {
        Q_EMIT Refused(p_File, RunText::Sentence(*failure));
        return;
    }
    ModuleCard card = CardOf(loader.Info()); // while its pictures are there
    loader.Release();
    Q_EMIT Found(card);
}

} // namespace Varnholt::Host
