// libFuzzer target: CheckReaders on any bytes. The seeds in corpus/ are tiny recordings of every
// format; real ones may be named as further folders:
//     fuzz_readers -max_total_time=300 -max_len=8192 work_folder fuzz/corpus ../shared/recordings/wav
#include "fuzz/Checks.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    quillon::fuzz::CheckReaders({data, size});
    return 0;
}
