#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QTextCodec>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace Varnholt::Fuzzing {

/// Ends the program when what must hold does not: the fuzzer keeps the input.
inline void Demand(bool p_Holds, char const* p_What)
{
    if (p_Holds)
        return;
    std::fprintf(stderr, "Not so: %s\n", p_What);
    std::abort();
}

/// What the fuzzer has made up.
inline QByteArray Input(std::uint8_t const* p_Data, std::size_t p_Size)
{
    return {reinterpret_cast<char const*>(p_Data), static_cast<int>(p_Size)};
}

/// Splits an input into so many parts at lines of "%%"; the last one holds the rest, those that
/// are not there are empty. A text that can be read in an editor makes a good seed.
inline std::vector<QByteArray> Parts(QByteArray const& p_Input, std::size_t p_Count)
{
    QByteArray const separator("\n%%\n");
    std::vector<QByteArray> parts;
    int from = 0;
    while (parts.size() + 1 < p_Count) {
        int const at = p_Input.indexOf(separator, from);
        if (at < 0)
            break;
        parts.push_back(p_Input.mid(from, at - from));
        from = at + separator.size();
    }
    parts.push_back(p_Input.mid(from));
    parts.resize(p_Count);
    return parts;
}

/// A file of its own, below TMPDIR: in memory when that is.
class ScratchFile {
public:
    QString Path() const { return Folder.filePath(QStringLiteral("file")); }

    void Put(QByteArray const& p_Bytes) const
    {
        QFile file(Path());
        Demand(file.open(QIODevice::WriteOnly) && file.write(p_Bytes) == p_Bytes.size(),
               "the scratch file can be written");
    }

    QByteArray Bytes() const
    {
        QFile file(Path());
        Demand(file.open(QIODevice::ReadOnly), "the scratch file can be read");
        return file.readAll();
    }

    void Remove() const { QFile::remove(Path()); }

private:
    QTemporaryDir Folder;
};

/// To be called once, before the first input: warnings go nowhere, local texts are UTF-8.
inline int Prepare()
{
    qInstallMessageHandler([](QtMsgType, QMessageLogContext const&, QString const&) {});
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
    return 0;
}

} // namespace Varnholt::Fuzzing
