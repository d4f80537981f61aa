#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string_view>

#include "BenchRecordings.h"
#include "ClimateTable.h"
#include "EegRecording.h"
#include "EvokedRecording.h"
#include "HolterRecording.h"
#include "ImageryRecording.h"
#include "SampleRecordings.h"
#include "SoundWriters.h"

namespace {

namespace fs = std::filesystem;
using namespace quillon::samples;

template <typename Write>
void MakeFile(const fs::path& path, Write write) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    write(file);
    file.close();
    if (!file) throw std::runtime_error("cannot write " + path.string());
    std::cout << path.string() << '\n';
}

void MakeSamples(const fs::path& folder, bool bench) {
    fs::create_directories(folder);
    MakeFile(folder / "01 EEG.edf", [](std::ostream& file) { file << EegFile(); });
    MakeFile(folder / "02 Music.wav", [](std::ostream& file) { file << MusicFile(); });
    MakeFile(folder / "03 ECG.bin", [](std::ostream& file) { file << EcgFile(); });
    MakeFile(folder / "04 Vibration sweep.bin", [](std::ostream& file) { file << VibrationFile(); });
    const BrainVisionFiles evoked = EvokedFiles("05 Evoked potentials");
    MakeFile(folder / "05 Evoked potentials.vhdr", [&](std::ostream& file) { file << evoked.header; });
    MakeFile(folder / "05 Evoked potentials.eeg", [&](std::ostream& file) { file << evoked.samples; });
    MakeFile(folder / "05 Evoked potentials.vmrk", [&](std::ostream& file) { file << evoked.markers; });
    const WfdbFiles holter = HolterFiles("06_Holter_ECG");
    MakeFile(folder / "06_Holter_ECG.hea", [&](std::ostream& file) { file << holter.header; });
    MakeFile(folder / "06_Holter_ECG.dat", [&](std::ostream& file) { file << holter.samples; });
    MakeFile(folder / "06_Holter_ECG.atr", [&](std::ostream& file) { file << holter.annotations; });
    MakeFile(folder / "07 Climate.csv", [](std::ostream& file) { file << ClimateTable(); });
    MakeFile(folder / "08 Imagined movements.gdf", [](std::ostream& file) { file << ImageryFile(); });
    MakeFile(folder / "09 Bell.w64", [](std::ostream& file) { file << BellW64(); });
    MakeFile(folder / "09 Bell.aiff", [](std::ostream& file) { file << BellAiff(); });
    MakeFile(folder / "09 Bell.au", [](std::ostream& file) { file << BellAu(); });
    if (!bench) return;
    MakeFile(folder / "05 Bench 32ch.bin", [](std::ostream& file) { WriteBenchBin(file, 4700); });
    MakeFile(folder / "05 Bench 32ch.edf", [](std::ostream& file) { WriteBenchEdf(file, 3600); });
}

}  // namespace

int main(int argc, char** argv) {
    std::string folder;
    bool bench = false;
    for (int i = 1; i < argc; ++i) {
        if (std::string_view(argv[i]) == "--bench") {
            bench = true;
        } else {
            folder = argv[i];
        }
    }
    if (folder.empty()) {
        std::cerr << "Usage: make-samples FOLDER [--bench]\n";
        return 2;
    }
    try {
        MakeSamples(folder, bench);
    } catch (const std::exception& error) {
        std::cerr << "make-samples: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
