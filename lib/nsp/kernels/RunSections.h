#pragma once

#include <cstddef>

#include "nsp/kernels/SectionKernel.h"

namespace quillon::nsp {

/// Sections that follow each other, all in one pass over the samples. The operations and their order are those of
/// FilterSection for every lane, so that all kernels give the same bits.
template <typename Doubles, std::size_t Vectors, std::size_t Sections>
void RunTogether(const FilterSection* sections, double* states, double* work, std::size_t count) {
    using Vector = typename Doubles::Vector;
    constexpr std::size_t kWidth = Vectors * Doubles::kCount;
    struct Section {
        Vector damping, first, twiceFirst, second, twiceSecond, high, band, low;
        Vector s1[Vectors], s2[Vectors];
    } chain[Sections];
    for (std::size_t i = 0; i < Sections; ++i) {
        const FilterSection& from = sections[i];
        Section& to = chain[i];
        to.damping = Doubles::Fill(from.damping);
        to.first = Doubles::Fill(from.first);
        to.twiceFirst = Doubles::Fill(2.0 * from.first);
        to.second = Doubles::Fill(from.second);
        to.twiceSecond = Doubles::Fill(2.0 * from.second);
        to.high = Doubles::Fill(from.high);
        to.band = Doubles::Fill(from.band);
        to.low = Doubles::Fill(from.low);
        for (std::size_t v = 0; v < Vectors; ++v) {
            to.s1[v] = Doubles::Load(states + 2 * i * kWidth + v * Doubles::kCount);
            to.s2[v] = Doubles::Load(states + (2 * i + 1) * kWidth + v * Doubles::kCount);
        }
    }
    for (double* const end = work + count * kWidth; work != end; work += kWidth) {
#pragma GCC unroll 4
        for (std::size_t v = 0; v < Vectors; ++v) {
            Vector x = Doubles::Load(work + v * Doubles::kCount);
#pragma GCC unroll 4
            for (std::size_t i = 0; i < Sections; ++i) {
                Section& section = chain[i];
                const Vector u = x - section.damping * section.s1[v] - section.s2[v];
                const Vector b = section.s1[v] + section.first * u;
                const Vector l = section.s2[v] + section.second * b;
                section.s1[v] += section.twiceFirst * u;
                section.s2[v] += section.twiceSecond * b;
                x = section.high * u + section.band * b + section.low * l;
            }
            Doubles::Store(work + v * Doubles::kCount, x);
        }
    }
    for (std::size_t i = 0; i < Sections; ++i) {
        for (std::size_t v = 0; v < Vectors; ++v) {
            Doubles::Store(states + 2 * i * kWidth + v * Doubles::kCount, chain[i].s1[v]);
            Doubles::Store(states + (2 * i + 1) * kWidth + v * Doubles::kCount, chain[i].s2[v]);
        }
    }
}

/// All sections, `Together` of them in a pass and then what is left.
template <typename Doubles, std::size_t Vectors, std::size_t Together>
void RunAll(const FilterSection* sections, std::size_t sectionCount, double* states, double* work, std::size_t count) {
    std::size_t done = 0;
    for (; done + Together <= sectionCount; done += Together)
        RunTogether<Doubles, Vectors, Together>(sections + done, states + 2 * done * Vectors * Doubles::kCount, work,
                                                count);
    if constexpr (Together > 1) {
        RunAll<Doubles, Vectors, Together / 2>(sections + done, sectionCount - done,
                                               states + 2 * done * Vectors * Doubles::kCount, work, count);
    }
}

template <typename Doubles>
void RunSections(const FilterSection* sections, std::size_t sectionCount, std::size_t vectors, double* states,
                 double* work, std::size_t count) {
    if (vectors == 2) {
        RunAll<Doubles, 2, 2>(sections, sectionCount, states, work, count);
    } else {
        RunAll<Doubles, 1, 4>(sections, sectionCount, states, work, count);
    }
}

}  // namespace quillon::nsp
