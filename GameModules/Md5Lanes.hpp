#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#if defined(__GNUC__) && !defined(VARNHOLT_NO_VECTORS)
#define VARNHOLT_VECTORS
#endif

/// MD5 of several streams of bytes at once. The steps of one stream wait for each other, those of
/// another do not: each lane of a vector register takes a stream of its own. Any thread.
namespace Varnholt::Launcher::Md5Lanes {

constexpr std::size_t c_BlockBytes = 64;
constexpr std::size_t c_Count = 16;
/// So many streams are done faster one by one: all, where the compiler has no vectors.
#ifdef VARNHOLT_VECTORS
constexpr std::size_t c_Few = 2;
#else
constexpr std::size_t c_Few = c_Count;
#endif

using State = std::array<std::uint32_t, 4>;
constexpr State c_Begin = {0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476};

/// Takes whole blocks of one stream.
void AddOne(State& p_State, unsigned char const* p_Data, std::size_t p_Blocks);

/// Takes the same number of blocks of `c_Count` streams, about as fast as of one. Several of them
/// may be the same.
void AddAll(std::array<State*, c_Count> const& p_States,
            std::array<unsigned char const*, c_Count> const& p_Data, std::size_t p_Blocks);

} // namespace Varnholt::Launcher::Md5Lanes
