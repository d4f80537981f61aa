// Recordings of each kind that another program goes on writing while they are open.
#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iostream>

#include "app/win/MainWindowFixture.h"
#include "norvik/EdfBuilder.h"

namespace quillon {
namespace {

using namespace ::quillon::testing;

constexpr std::size_t kRate = 100;

/// A kind of recording as its writer makes it: what stands in its files at first, and what a second adds to the last.
struct Kind {
    const char* name;
    std::vector<std::pair<std::u16string, std::string>> files;  ///< the first one is opened
    std::function<std::string(std::size_t second)> record;
};

/// One channel of 16-bit codes.
std::string Codes(std::size_t second) {
    FileBytes bytes;
    for (std::size_t at = 0; at < kRate; ++at) bytes.U16(static_cast<std::uint32_t>(at * 300 + second));
    return bytes.Get();
}

std::string Rows(std::size_t second) {
    std::string rows;
    for (std::size_t at = 0; at < kRate; ++at)
        rows += std::to_string(second) + (at < 10 ? ".0" : ".") + std::to_string(at) + "," + std::to_string(at) + "\n";
    return rows;
}

std::vector<Kind> Kinds() {
    EdfBuilder edf;
    edf.records = "-1";
    edf.signals = {{.samplesPerRecord = kRate}};
    const std::vector<std::uint8_t> whole = edf.Bytes();
    constexpr std::uint32_t open = 0xFFFFFFFF;
    FileBytes wave;
    wave.Text("RIFF").U32(open).Text("WAVEfmt ").U32(16).U16(1).U16(1).U32(kRate).U32(2 * kRate).U16(2).U16(16);
    wave.Text("data").U32(open);
    const std::string bin = samples::BinHeader(kRate, "Device", {{"Fp1", "V"}}, 0);
    const std::string brain =
        "Brain Vision Data Exchange Header File Version 1.0\n[Common Infos]\nDataFile=r.eeg\nDataFormat=BINARY\n"
        "DataOrientation=MULTIPLEXED\nNumberOfChannels=1\nSamplingInterval=10000\n[Binary Infos]\n"
        "BinaryFormat=INT_16\n[Channel Infos]\nCh1=Fp1,,1,\xC2\xB5V\n";
    return {
        {"EDF", {{u"r.edf", std::string(whole.begin(), whole.begin() + 512)}}, Codes},
        {"WAVE", {{u"r.wav", wave.Get()}}, Codes},
        {"text", {{u"r.csv", "Time (s),A (V)\n"}}, Rows},
        {"WFDB", {{u"r.hea", "r 1 100\nr.dat 16 200/mV\n"}, {u"r.dat", ""}}, Codes},
        {"bin", {{u"r.bin", bin}}, Codes},
        {"BrainVision", {{u"r.vhdr", brain}, {u"r.eeg", ""}}, Codes},
    };
}

class GrowingFilesTest : public MainWindowTest {
  protected:
    void Watch(const Kind& kind, std::size_t seconds, bool paced) {
        SCOPED_TRACE(kind.name);
        constexpr std::size_t begun = 15;  // more than a page
        const std::filesystem::path folder = m_folder.File(Utf16(kind.name));
        std::filesystem::create_directory(folder);
        for (const auto& [name, text] : kind.files) std::ofstream(folder / name, std::ios::binary) << text;
        // As the recorder has it: open all the time.
        std::ofstream recorder(folder / kind.files.back().first, std::ios::binary | std::ios::app);
        for (std::size_t second = 0; second < begun; ++second) recorder << kind.record(second);
        recorder.flush();
        m_form->OpenPath((folder / kind.files.front().first).wstring());
        const ViewBlock& block = m_global.document->Block();
        const auto holds = [&](std::size_t length) {
            return block.sampleCount == static_cast<std::int32_t>(length * kRate);
        };
        ASSERT_TRUE(PumpUntil([&] { return holds(begun); })) << block.sampleCount;
        const TimeAxis& axis = m_global.view->Axis();
        if (!axis.IsFree()) Command(mnuLanes), Command(mnuPage + 1);
        Key(VK_END);
        std::vector<ULONGLONG> waits;
        for (std::size_t second = begun; second < begun + seconds; ++second) {
            const ULONGLONG start = GetTickCount64();
            recorder << kind.record(second) << std::flush;
            ASSERT_TRUE(recorder.good());
            ASSERT_TRUE(PumpUntil([&] { return holds(second + 1); })) << block.sampleCount;
            EXPECT_EQ(axis.FirstColumn() + axis.Width(), axis.StripLength());
            waits.push_back(GetTickCount64() - start);
            if (paced) static_cast<void>(PumpUntil([&] { return GetTickCount64() - start >= 1000; }));
        }
        std::sort(waits.begin(), waits.end());
        if (paced)
            std::cout << kind.name << ": seen after " << waits[waits.size() / 2] << " ms (median), " << waits.back()
                      << " ms (longest)" << std::endl;
        // Tables of text have codes of their own.
        if (kind.record(0) != Codes(0)) return;
        std::int16_t code = -1;
        block.block->ReadCodes(1, block.sampleCount - 1, 1, &code);
        EXPECT_EQ(code, 300 * (kRate - 1) + begun + seconds - 1);
    }
};

TEST_F(GrowingFilesTest, EveryKindIsFollowedToItsEnd) {
    // GROWING_SECONDS=60 lets them grow that long, a second each second, and tells how late the window was.
    const char* wanted = std::getenv("GROWING_SECONDS");
    Start();
    const std::size_t seconds = wanted == nullptr ? 2 : std::strtoul(wanted, nullptr, 10);
    for (const Kind& kind : Kinds()) ASSERT_NO_FATAL_FAILURE(Watch(kind, seconds, wanted != nullptr));
}

}  // namespace
}  // namespace quillon
