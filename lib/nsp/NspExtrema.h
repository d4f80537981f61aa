#pragma once

/// The signal library's calls for the extremes of 16-bit samples, under their own names. `n` is the number of samples,
/// at least 1; with fewer the result is 0 and the index -1. `index` receives the position, from 0, of the extreme's
/// first occurrence.
namespace quillon::nsp {

short nspwMaxExt(const short* src, int n, int* index);
short nspwMinExt(const short* src, int n, int* index);
short nspwMax(const short* src, int n);
short nspwMin(const short* src, int n);

}  // namespace quillon::nsp
