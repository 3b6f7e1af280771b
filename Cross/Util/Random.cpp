#include "Cross/Util/Random.h"

#include "Cross/engine/platform/Time.h"

#ifdef __SSE2__
#include <emmintrin.h>
#endif

void Random::SetRandomSeed() {
    Plat::Time::SystemTime now;
    Plat::Time::TimeNow(now);
    SetSeed(static_cast<std::uint32_t>(((now.day * 24 + now.hour) * 60 + now.minute) * 60 + now.second));
}

#ifdef __SSE2__

namespace {

// Products of 16-bit halves, as four words: the low halves of the two operands multiplied.
__m128i lowProduct(__m128i low, __m128i high) {
    return _mm_or_si128(_mm_and_si128(low, _mm_set1_epi32(0xFFFF)), _mm_slli_epi32(high, 16));
}

// The same of the high halves.
__m128i highProduct(__m128i low, __m128i high) {
    return _mm_or_si128(_mm_srli_epi32(low, 16), _mm_andnot_si128(_mm_set1_epi32(0xFFFF), high));
}

__m128i swapHalves(__m128i words) {
    return _mm_shufflehi_epi16(_mm_shufflelo_epi16(words, _MM_SHUFFLE(2, 3, 0, 1)), _MM_SHUFFLE(2, 3, 0, 1));
}

__m128i word(std::uint32_t value) { return _mm_set1_epi32(static_cast<int>(value)); }

// Random::mix on four words at once. The inverted square is put off: it turns the row's second word over.
__m128i mixFour(__m128i left, __m128i right, std::uint32_t first, std::uint32_t second) {
    __m128i const a = _mm_xor_si128(right, word(first));
    __m128i const low = _mm_mullo_epi16(a, a);
    __m128i const high = _mm_mulhi_epu16(a, a);
    __m128i const b = swapHalves(_mm_sub_epi32(highProduct(low, high), lowProduct(low, high)));
    __m128i const upper = _mm_srli_epi32(a, 16);
    __m128i const cross =
        _mm_or_si128(_mm_mullo_epi16(a, upper), _mm_slli_epi32(_mm_mulhi_epu16(a, upper), 16));
    return _mm_xor_si128(_mm_add_epi32(_mm_xor_si128(b, word(~second)), cross), left);
}

} // namespace

#endif

void Random::fillFour(std::uint32_t * numbers) const {
#ifdef __SSE2__
    __m128i left = word(seed);
    __m128i right = _mm_add_epi32(word(index), _mm_setr_epi32(0, 1, 2, 3));
    for (std::uint32_t i = 0; i < rounds; ++i) {
        __m128i const mixed = mixFour(left, right, c_rows[i].first, c_rows[i].second);
        left = right;
        right = mixed;
    }
    _mm_storeu_si128(reinterpret_cast<__m128i *>(numbers), right);
#else
    for (std::uint32_t i = 0; i < 4; ++i)
        numbers[i] = hash(seed, index + i, rounds);
#endif
}

void Random::Fill(std::uint32_t * numbers, std::size_t count) {
    for (; count >= 4; count -= 4, numbers += 4, index += 4)
        fillFour(numbers);
    for (; count > 0; --count)
        *numbers++ = draw();
}
