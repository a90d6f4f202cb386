#include "Launcher/Helper/Md5Lanes.hpp"

#include <QByteArray>
#include <QtEndian>

#include <algorithm>
#include <type_traits>
#include <utility>

// Where the loader can choose, the widest registers of the machine are used.
#if defined(__x86_64__) && defined(__ELF__) && !defined(__SANITIZE_THREAD__)
#define VARNHOLT_CLONES __attribute__((target_clones("avx512f", "avx2", "default")))
#else
#define VARNHOLT_CLONES
#endif
#ifdef VARNHOLT_VECTORS
#define VARNHOLT_INLINE inline __attribute__((always_inline))
#else
#define VARNHOLT_INLINE inline
#endif

namespace Varnholt::Launcher::Md5Lanes {

namespace {

constexpr std::size_t c_Words = c_BlockBytes / sizeof(std::uint32_t);

constexpr std::array<std::uint32_t, 64> c_Sines = {
    0xd76aa478, 0xe8c7b756, 0x242070db, 0xc1bdceee, 0xf57c0faf, 0x4787c62a, 0xa8304613, 0xfd469501,
    0x698098d8, 0x8b44f7af, 0xffff5bb1, 0x895cd7be, 0x6b901122, 0xfd987193, 0xa679438e, 0x49b40821,
    0xf61e2562, 0xc040b340, 0x265e5a51, 0xe9b6c7aa, 0xd62f105d, 0x02441453, 0xd8a1e681, 0xe7d3fbc8,
    0x21e1cde6, 0xc33707d6, 0xf4d50d87, 0x455a14ed, 0xa9e3e905, 0xfcefa3f8, 0x676f02d9, 0x8d2a4c8a,
    0xfffa3942, 0x8771f681, 0x6d9d6122, 0xfde5380c, 0xa4beea44, 0x4bdecfa9, 0xf6bb4b60, 0xbebfbc70,
    0x289b7ec6, 0xeaa127fa, 0xd4ef3085, 0x04881d05, 0xd9d4d039, 0xe6db99e5, 0x1fa27cf8, 0xc4ac5665,
    0xf4292244, 0x432aff97, 0xab9423a7, 0xfc93a039, 0x655b59c3, 0x8f0ccc92, 0xffeff47d, 0x85845dd1,
    0x6fa87e4f, 0xfe2ce6e0, 0xa3014314, 0x4e0811a1, 0xf7537e82, 0xbd3af235, 0x2ad7d2bb, 0xeb86d391,
};
constexpr int c_Shifts[4][4] = {{7, 12, 17, 22}, {5, 9, 14, 20}, {4, 11, 16, 23}, {6, 10, 15, 21}};

template <std::size_t Step, typename Word>
VARNHOLT_INLINE void Mix(Word* p_State, Word const* p_Block)
{
    constexpr std::size_t c_Round = Step / c_Words;
    constexpr std::size_t c_Factors[] = {1, 5, 3, 7};
    constexpr std::size_t c_Offsets[] = {0, 1, 5, 0};
    constexpr std::size_t c_Word = (c_Factors[c_Round] * Step + c_Offsets[c_Round]) % c_Words;
    constexpr int c_Shift = c_Shifts[c_Round][Step % 4];

    Word& a = p_State[(64 - Step) % 4];
    Word const& b = p_State[(65 - Step) % 4];
    Word const& c = p_State[(66 - Step) % 4];
    Word const& d = p_State[(67 - Step) % 4];
    Word sum = a + p_Block[c_Word] + c_Sines[Step];
    if constexpr (c_Round == 0)
        sum += d ^ (b & (c ^ d));
    else if constexpr (c_Round == 1 && std::is_integral_v<Word>)
        sum = sum + (~d & c) + (d & b); // b is known last: two steps behind it instead of three
    else if constexpr (c_Round == 1)
        sum += c ^ (d & (b ^ c)); // one operation on some vectors
    else if constexpr (c_Round == 2)
        sum += b ^ (c ^ d);
    else
        sum += c ^ (b | ~d);
    a = b + ((sum << c_Shift) | (sum >> (32 - c_Shift)));
}

template <typename Word, std::size_t... Steps>
VARNHOLT_INLINE void MixAll(Word* p_State, Word const* p_Block, std::index_sequence<Steps...>)
{
    Word const before[] = {p_State[0], p_State[1], p_State[2], p_State[3]};
    (Mix<Steps>(p_State, p_Block), ...);
    for (int i = 0; i < 4; ++i)
        p_State[i] += before[i];
}

VARNHOLT_INLINE std::uint32_t WordAt(unsigned char const* p_Data, std::size_t p_Word)
{
    return qFromLittleEndian<std::uint32_t>(p_Data + p_Word * sizeof(std::uint32_t));
}

#ifdef VARNHOLT_VECTORS
/// One word of each stream.
using Lanes = std::uint32_t __attribute__((vector_size(c_Count * sizeof(std::uint32_t))));

/// Not `AddAll` itself: the versions of a function with external linkage would be exported.
VARNHOLT_CLONES
void Add(std::array<State*, c_Count> const& p_States,
         std::array<unsigned char const*, c_Count> const& p_Data, std::size_t p_Blocks)
{
    Lanes state[4];
    for (std::size_t i = 0; i < 4; ++i)
        for (std::size_t lane = 0; lane < c_Count; ++lane)
            state[i][lane] = (*p_States[lane])[i];
    for (std::size_t offset = 0; offset < p_Blocks * c_BlockBytes; offset += c_BlockBytes) {
        Lanes block[c_Words];
        for (std::size_t word = 0; word < c_Words; ++word)
            for (std::size_t lane = 0; lane < c_Count; ++lane)
                block[word][lane] = WordAt(p_Data[lane] + offset, word);
        MixAll(state, block, std::make_index_sequence<c_Sines.size()>());
    }
    for (std::size_t i = 0; i < 4; ++i)
        for (std::size_t lane = 0; lane < c_Count; ++lane)
            (*p_States[lane])[i] = state[i][lane];
}
#else
void Add(std::array<State*, c_Count> const& p_States,
         std::array<unsigned char const*, c_Count> const& p_Data, std::size_t p_Blocks)
{
    for (std::size_t lane = 0; lane < c_Count; ++lane)
        AddOne(*p_States[lane], p_Data[lane], p_Blocks);
}
#endif

} // namespace

void AddOne(State& p_State, unsigned char const* p_Data, std::size_t p_Blocks)
{
    for (; p_Blocks > 0; --p_Blocks, p_Data += c_BlockBytes) {
        std::uint32_t block[c_Words];
        for (std::size_t word = 0; word < c_Words; ++word)
            block[word] = WordAt(p_Data, word);
        MixAll(p_State.data(), block, std::make_index_sequence<c_Sines.size()>());
    }
}

std::size_t Pad(unsigned char* p_Data, std::size_t p_Left, std::uint64_t p_Total)
{
    constexpr unsigned char c_Bit = 0x80;

    std::size_t const blocks = (p_Left + sizeof p_Total) / c_BlockBytes + 1;
    unsigned char* const end = p_Data + blocks * c_BlockBytes;
    std::fill(p_Data + p_Left, end, static_cast<unsigned char>(0));
    p_Data[p_Left] = c_Bit;
    qToLittleEndian(p_Total * 8, end - sizeof p_Total);
    return blocks;
}

QString TextOf(State const& p_State)
{
    std::array<char, sizeof(State)> bytes;
    for (std::size_t i = 0; i < p_State.size(); ++i)
        qToLittleEndian(p_State[i], bytes.data() + i * sizeof(p_State[i]));
    return QString::fromLatin1(QByteArray(bytes.data(), bytes.size()).toHex()).toUpper();
}

void AddAll(std::array<State*, c_Count> const& p_States,
            std::array<unsigned char const*, c_Count> const& p_Data, std::size_t p_Blocks)
{
    Add(p_States, p_Data, p_Blocks);
}

} // namespace Varnholt::Launcher::Md5Lanes
