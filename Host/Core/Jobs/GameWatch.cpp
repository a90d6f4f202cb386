#include "Host/Core/Jobs/GameWatch.hpp"

namespace Varnholt::Host {

void GameWatch::Take(std::unique_ptr<GameProcess> p_Game)
{
    Q_EMIT Started(p_Game->Id());
    Running.push_back(std::move(p_Game));
}

void GameWatch::Look()
{
    for (std::size_t i = 0; i < Running.size();) {
        auto const end = Running[i]->Ending();
        if (!end) {
            ++i;
            continue;
        }
        Running.erase(Running.begin() + static_cast<std::ptrdiff_t>(i));
        Q_EMIT Ended(*end);
    }
}

} // namespace Varnholt::Host
