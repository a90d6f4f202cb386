#pragma once

#include <QString>

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

/// Ends a stream: appends a bit, zeros, and its length to what is left of it.
/// \param p_Data holds p_Left bytes that were not taken, and has room for two blocks behind them
/// \param p_Total bytes of the whole stream \return blocks that are to be taken now
std::size_t Pad(unsigned char* p_Data, std::size_t p_Left, std::uint64_t p_Total);
/// The digest of a stream that was ended, 32 upper-case hexadecimal digits.
QString TextOf(State const& p_State);

/// Takes the same number of blocks of `c_Count` streams, about as fast as of one. Several of them
/// may be the same.
void AddAll(std::array<State*, c_Count> const& p_States,
            std::array<unsigned char const*, c_Count> const& p_Data, std::size_t p_Blocks);

} // namespace Varnholt::Launcher::Md5Lanes
