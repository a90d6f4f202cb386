#include "Launcher/Application/ManifestRows.hpp"

#include <QUuid>

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

namespace Varnholt::Launcher {

namespace {

using Entry = ApplicationManifestFileEntry;

QString* TextUnder(std::string_view p_Key, Entry& p_Entry)
{
    if (p_Key == "location")
        return &p_Entry.Location;
    if (p_Key == "path")
        return &p_Entry.Path;
    if (p_Key == "md5")
        return &p_Entry.Md5;
    return p_Key == "locale" ? &p_Entry.Locale : nullptr;
}

/// Walks through the text of a document.
class Cursor {
public:
    explicit Cursor(QByteArray const& p_Text)
        : Now(p_Text.constData())
        , End(Now + p_Text.size())
    {
    }

    char const* Place() const { return Now; }

    /// Goes on behind the next bracket that opens an array. \return false at the end of the text
    bool FindArray()
    {
        for (bool isInText = false; Now != End;) {
            char const character = *Now++;
            if (character == '[' && !isInText)
                return true;
            if (character == '"')
                isInText = !isInText;
            else if (character == '\\' && Now != End)
                ++Now;
        }
        return false;
    }

    /// Takes the plain rows that stand here, and goes on behind the last one.
    std::vector<Entry> TakeRows()
    {
        std::vector<Entry> rows;
        char const* behind = Now;
        do {
            Entry row;
            if (!TakeRow(row))
                break;
            rows.push_back(std::move(row));
            behind = Now;
        } while (Take(','));
        Now = behind;
        return rows;
    }

private:
    void SkipSpace()
    {
        while (Now != End && (*Now == ' ' || *Now == '\n' || *Now == '\r' || *Now == '\t'))
            ++Now;
    }

    bool Take(char p_Character)
    {
        SkipSpace();
        bool const isIt = Now != End && *Now == p_Character;
        Now += isIt ? 1 : 0;
        return isIt;
    }

    bool TakeRow(Entry& p_Row)
    {
        if (!Take('{'))
            return false;
        if (Take('}'))
            return true;
        do {
            auto const key = TakeText();
            if (!key || !Take(':'))
                return false;
            QString* const text = TextUnder(*key, p_Row);
            if (text == nullptr ? *key != "flags" || !TakeNumber(p_Row.Flags) : !TakeText(*text))
                return false;
        } while (Take(','));
        return Take('}');
    }

    std::optional<std::string_view> TakeText()
    {
        if (!Take('"'))
            return std::nullopt;
        char const* const begin = Now;
        Now = std::find(Now, End, '"');
        bool const isPlain = std::all_of(begin, Now, [](char p_Character) {
            return static_cast<unsigned char>(p_Character) >= ' ' && p_Character != '\\';
        });
        if (Now == End || !isPlain)
            return std::nullopt;
        return std::string_view(begin, static_cast<std::size_t>(Now++ - begin));
    }

    bool TakeText(QString& p_Text)
    {
        auto const text = TakeText();
        if (text)
            p_Text = QString::fromUtf8(text->data(), static_cast<int>(text->size()));
        return text.has_value();
    }

    bool TakeNumber(qint32& p_Number)
    {
        SkipSpace();
        char const* const digits = Now != End && *Now == '-' ? Now + 1 : Now;
        auto const [behind, error] = std::from_chars(Now, End, p_Number);
        bool const isPlain = error == std::errc() && (*digits != '0' || behind == digits + 1);
        Now = behind;
        return isPlain;
    }

    char const* Now;
    char const* End;
};

} // namespace

ManifestRows::ManifestRows(QByteArray const& p_Document)
    : Mark(QUuid::createUuid().toString())
{
    Cursor cursor(p_Document);
    char const* from = cursor.Place();
    auto const copy = [&](char const* p_To) { Text.append(from, static_cast<int>(p_To - from)); };
    while (cursor.FindArray()) {
        char const* const begin = cursor.Place();
        Entries rows = cursor.TakeRows();
        if (rows.empty())
            continue;
        copy(begin);
        Text += '"' + (Mark + QString::number(Runs.size())).toLatin1() + '"';
        Runs.push_back(std::move(rows));
        from = cursor.Place();
    }
    copy(cursor.Place());
}

ManifestRows::Entries* ManifestRows::At(QJsonValue const& p_Value)
{
    QString const text = p_Value.toString();
    return text.startsWith(Mark) ? &Runs[text.mid(Mark.size()).toUInt()] : nullptr;
}

} // namespace Varnholt::Launcher
