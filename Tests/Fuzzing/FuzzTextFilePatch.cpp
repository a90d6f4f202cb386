// The game's configuration, patched as the choice of a language and the realm list do it: the new
// line comes last, the lines of its key are gone, the others stay, and once is as good as twice.
//
// An input is the configuration, none when it is empty, the code of the language and the fetched
// realm list, each after a line "%%".

#include "GameModules/TextFilePatch.hpp"
#include "Launcher/Application/RemoteText.hpp"
#include "Tests/Fuzzing/FuzzSupport.hpp"

namespace {

using namespace Varnholt;
using Fuzzing::Demand;
namespace TextFilePatch = Launcher::TextFilePatch;

/// The lines of a configuration as they stand there, in bytes.
QList<QByteArray> Lines(QByteArray const& p_Bytes)
{
    QList<QByteArray> lines = p_Bytes.split('\n');
    if (lines.last().isEmpty())
        lines.removeLast();
    for (QByteArray& line : lines)
        if (line.endsWith('\r'))
            line.chop(1);
    return lines;
}

/// Only such texts stay the same bytes when they are read and written: a byte order mark, and one
/// of two carriage returns, belong to no line.
bool IsPlain(QByteArray const& p_Bytes)
{
    QString const text = QString::fromUtf8(p_Bytes);
    return text.toUtf8() == p_Bytes && !text.contains(QChar(0xFEFF)) && !p_Bytes.contains("\r\r");
}

QByteArray Expected(QByteArray const& p_Before, QString const& p_Key, QString const& p_Line)
{
    QByteArray expected;
    for (QByteArray const& line : Lines(p_Before))
        if (!QString::fromUtf8(line).contains(p_Key, Qt::CaseInsensitive))
            expected += line + '\n';
    return expected + p_Line.toUtf8() + '\n';
}

void Patch(Fuzzing::ScratchFile const& p_File, QString const& p_Key, QString const& p_Line)
{
    QByteArray const before = p_File.Bytes();
    TextFilePatch::Apply(p_File.Path(), p_Key, p_Line, true);
    QByteArray const once = p_File.Bytes();
    Demand(once.endsWith(p_Line.toUtf8() + '\n'), "the new line is the last one");
    if (!IsPlain(before) || !IsPlain(p_Line.toUtf8()))
        return;
    Demand(once == Expected(before, p_Key, p_Line), "the other lines stay as they were");

    // A line that does not name its key is not replaced by the next one: that is the server's
    // fault.
    if (p_Line.contains('\n') || !p_Line.contains(p_Key, Qt::CaseInsensitive))
        return;
    TextFilePatch::Apply(p_File.Path(), p_Key, p_Line, true);
    Demand(p_File.Bytes() == once, "patching twice is the same as patching once");
}

void Create(Fuzzing::ScratchFile const& p_File, QString const& p_Key, QString const& p_Line)
{
    p_File.Remove();
    TextFilePatch::Apply(p_File.Path(), p_Key, p_Line, false);
    Demand(!QFile::exists(p_File.Path()),
           "what is not there is not created without being asked for");
    TextFilePatch::Apply(p_File.Path(), p_Key, p_Line, true);
    Demand(p_File.Bytes() == p_Line.toUtf8(), "a new configuration is the line alone");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* p_Data, std::size_t p_Size)
{
    static int const prepared = Fuzzing::Prepare();
    static Fuzzing::ScratchFile const file;
    auto const parts = Fuzzing::Parts(Fuzzing::Input(p_Data, p_Size), 3);

    QString const code = QString::fromUtf8(parts[1]);
    QString const realmLine = Launcher::RemoteText::Of(parts[2]);
    QString const locale = QStringLiteral("locale");
    QString const localeLine = QStringLiteral("SET locale \"%1\"").arg(code);
    if (parts[0].isEmpty())
        Create(file, locale, localeLine);
    else
        file.Put(parts[0]);
    Patch(file, locale, localeLine);
    Patch(file, QStringLiteral("installLocale"),
          QStringLiteral("SET installLocale \"%1\"").arg(code));
    Patch(file, QStringLiteral("realmlist"), realmLine);
    return prepared;
}
