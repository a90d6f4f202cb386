#include "Programs/Suggestion.hpp"

#include <algorithm>
#include <vector>

namespace Varnholt::Programs {

namespace {

/// How many letters are too much, too few, others or changed with their neighbour.
int Distance(QString const& p_Left, QString const& p_Right)
{
    std::vector<std::vector<int>> rows(
        static_cast<std::size_t>(p_Left.size()) + 1,
        std::vector<int>(static_cast<std::size_t>(p_Right.size()) + 1));
    for (std::size_t i = 0; i < rows.size(); ++i)
        for (std::size_t j = 0; j < rows[i].size(); ++j) {
            if (i == 0 || j == 0) {
                rows[i][j] = static_cast<int>(i + j);
                continue;
            }
            auto const left = static_cast<int>(i);
            auto const right = static_cast<int>(j);
            int const change = p_Left[left - 1] == p_Right[right - 1] ? 0 : 1;
            rows[i][j] =
                std::min({rows[i - 1][j] + 1, rows[i][j - 1] + 1, rows[i - 1][j - 1] + change});
            if (i > 1 && j > 1 && p_Left[left - 1] == p_Right[right - 2] &&
                p_Left[left - 2] == p_Right[right - 1])
                rows[i][j] = std::min(rows[i][j], rows[i - 2][j - 2] + 1);
        }
    return rows.back().back();
}

} // namespace

QString Suggestion(QString const& p_Word, QStringList const& p_Known)
{
    constexpr int c_Longest = 40; // of what is meant as a word
    constexpr int c_LettersPerMistake = 3;

    if (p_Word.isEmpty() || p_Word.size() > c_Longest)
        return {};
    QString nearest;
    int least = std::max(1, p_Word.size() / c_LettersPerMistake) + 1;
    for (QString const& known : p_Known)
        if (int const distance = Distance(p_Word, known); distance < least) {
            least = distance;
            nearest = known;
        }
    return nearest.isEmpty() ? QString() : QStringLiteral("did you mean \"%1\"?").arg(nearest);
}

} // namespace Varnholt::Programs
