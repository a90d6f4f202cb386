#pragma once

#include <cstdint>
#include <random>

namespace Varnholt::Artwork {

/// A stream of numbers that is the same with every standard library; the distributions of
/// <random> are not.
class Random {
public:
    explicit Random(std::uint32_t p_Seed)
        : m_Engine(p_Seed)
    {
    }

    /// The next number in p_From to p_To.
    double Between(double p_From, double p_To)
    {
        return p_From + (p_To - p_From) * (static_cast<double>(m_Engine()) / 4294967296.0);
    }

private:
    std::mt19937 m_Engine;
};

} // namespace Varnholt::Artwork
