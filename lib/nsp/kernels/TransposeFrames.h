#pragma once

#include <cstddef>

namespace quillon::nsp {

/// Of 8 / Channels vectors, from one stretch of frames of 1, 2 or 4 channels per vector (half) to one frame of every
/// stretch per vector.
template <typename Lanes, std::size_t Channels>
void TransposeFrames(typename Lanes::Vector* v) {
    using Vector = typename Lanes::Vector;
    if constexpr (Channels == 4) {
        const Vector low = Lanes::Low64(v[0], v[1]);
        v[1] = Lanes::High64(v[0], v[1]);
        v[0] = low;
    } else if constexpr (Channels == 2) {
        const Vector a = Lanes::Low32(v[0], v[1]);
        const Vector b = Lanes::High32(v[0], v[1]);
        const Vector c = Lanes::Low32(v[2], v[3]);
        const Vector d = Lanes::High32(v[2], v[3]);
        v[0] = Lanes::Low64(a, c);
        v[1] = Lanes::High64(a, c);
        v[2] = Lanes::Low64(b, d);
        v[3] = Lanes::High64(b, d);
    } else {
        Vector pairs[8];
        Vector fours[8];
        for (std::size_t i = 0; i < 4; ++i) {
            pairs[2 * i] = Lanes::Low16(v[2 * i], v[2 * i + 1]);
            pairs[2 * i + 1] = Lanes::High16(v[2 * i], v[2 * i + 1]);
        }
        for (std::size_t half = 0; half < 8; half += 4) {
            for (std::size_t i = 0; i < 2; ++i) {
                fours[half + 2 * i] = Lanes::Low32(pairs[half + i], pairs[half + 2 + i]);
                fours[half + 2 * i + 1] = Lanes::High32(pairs[half + i], pairs[half + 2 + i]);
            }
        }
        for (std::size_t i = 0; i < 4; ++i) {
            v[2 * i] = Lanes::Low64(fours[i], fours[4 + i]);
            v[2 * i + 1] = Lanes::High64(fours[i], fours[4 + i]);
        }
    }
}

}  // namespace quillon::nsp
