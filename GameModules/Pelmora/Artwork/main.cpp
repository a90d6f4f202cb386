#include "GameModules/Pelmora/Artwork/Emblem.hpp"
#include "GameModules/Pelmora/Artwork/Landscape.hpp"

#include <QtCore/QCommandLineParser>
#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QSaveFile>
#include <QtCore/QTextStream>
#include <QtGui/QImageWriter>

namespace {

using namespace Varnholt::Artwork;

constexpr int c_ExitFailed = 1;
constexpr int c_ExitUsage = 2;
constexpr int c_EmblemSize = 256;
constexpr int c_JpegQuality = 88;

void Complain(const QString& p_Message)
{
    QTextStream(stderr) << "pelmora-artwork: " << p_Message << Qt::endl;
}

/// Writes one image, whole or not at all, and says why when it cannot.
bool Save(const QImage& p_Image, const QString& p_Path, const char* p_Format, int p_Quality)
{
    const QString shown = QDir::toNativeSeparators(p_Path);
    QSaveFile file(p_Path);
    if (!file.open(QIODevice::WriteOnly)) {
        Complain(QStringLiteral("cannot write %1: %2").arg(shown, file.errorString()));
        return false;
    }
    QImageWriter writer(&file, p_Format);
    writer.setQuality(p_Quality);
    writer.setOptimizedWrite(true);
    if (!writer.write(p_Image)) {
        Complain(QStringLiteral("cannot write %1: %2").arg(shown, writer.errorString()));
        return false;
    }
    if (!file.commit()) {
        Complain(QStringLiteral("cannot write %1: %2").arg(shown, file.errorString()));
        return false;
    }
    QTextStream(stdout) << shown << Qt::endl;
    return true;
}

bool PaintAll(const QDir& p_Output)
{
    return Save(PaintEmblem(EmblemState::Resting, c_EmblemSize),
                p_Output.filePath(QStringLiteral("icon_mop.png")), "png", -1) &&
           Save(PaintEmblem(EmblemState::Active, c_EmblemSize),
                p_Output.filePath(QStringLiteral("icon_mop_active.png")), "png", -1) &&
           Save(PaintLandscape().convertToFormat(QImage::Format_RGB32),
                p_Output.filePath(QStringLiteral("background.jpg")), "jpg", c_JpegQuality);
}

} // namespace

int main(int p_Count, char** p_Arguments)
{
    const QCoreApplication application(p_Count, p_Arguments);
    QCoreApplication::setApplicationName(QStringLiteral("pelmora-artwork"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Paints the artwork of the game's page: background.jpg, icon_mop.png and\n"
        "icon_mop_active.png. The same program paints the same pixels at every run."));
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("OUTPUT_DIR"),
                                 QStringLiteral("Existing folder to write the images to."));
    if (!parser.parse(QCoreApplication::arguments())) {
        Complain(parser.errorText() + QStringLiteral(" --help explains"));
        return c_ExitUsage;
    }
    parser.process(application);

    if (parser.positionalArguments().size() != 1) {
        Complain(QStringLiteral("give one output folder; --help explains"));
        return c_ExitUsage;
    }
    const QString folder = parser.positionalArguments().constFirst();
    if (!QFileInfo(folder).isDir()) {
        Complain(QStringLiteral("cannot write to %1: it is not a folder")
                     .arg(QDir::toNativeSeparators(folder)));
        return c_ExitFailed;
    }
    return PaintAll(QDir(folder)) ? 0 : c_ExitFailed;
}
