#pragma once

#include <QtGlobal>

#include <random>

namespace Varnholt::TestSupport {

/// Random draws that are the same everywhere for the same seed.
class Randomness {
public:
    explicit Randomness(quint32 p_Seed)
        : Engine(p_Seed)
    {
    }

    /// 0 … p_Count - 1
    int Below(int p_Count) { return static_cast<int>(Engine() % static_cast<quint32>(p_Count)); }
    int Between(int p_First, int p_Last) { return p_First + Below(p_Last - p_First + 1); }
    bool OneIn(int p_Count) { return Below(p_Count) == 0; }
    template <typename Container>
    auto const& From(Container const& p_Container)
    {
        return p_Container[static_cast<std::size_t>(Below(static_cast<int>(p_Container.size())))];
    }

private:
    std::mt19937 Engine;
};

} // namespace Varnholt::TestSupport
