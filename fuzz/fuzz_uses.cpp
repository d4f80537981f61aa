// libFuzzer target: CheckUses on any bytes. The seeds in corpus/ are tiny recordings of every
// format; real ones may be named as further folders:
//     fuzz_uses -max_total_time=300 -max_len=8192 work_folder fuzz/corpus ../shared/recordings/wav
#include "fuzz/Checks.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    quillon::fuzz::CheckUses({data, size});
    return 0;
}
