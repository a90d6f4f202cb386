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

/// Takes the same number of blocks of `c_Count` streams, about as fast as of one. Several of them
/// may be the same.
void AddAll(std::array<State*, c_Count> const& p_States,
            std::array<unsigned char const*, c_Count> const& p_Data, std::size_t p_Blocks);

/// Puts the end of a stream behind its last bytes.
/// \param p_Data these, with room for `c_PaddingBytes` behind them
/// \param p_Total bytes of the whole stream
/// \return how many blocks they are now
std::size_t Pad(unsigned char* p_Data, std::size_t p_Bytes, std::uint64_t p_Total);
constexpr std::size_t c_PaddingBytes = 2 * c_BlockBytes;

/// The digest of a stream that has come to its end: 32 upper-case hexadecimal digits.
QString TextOf(State const& p_State);

} // namespace Varnholt::Launcher::Md5Lanes
