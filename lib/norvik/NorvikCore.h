#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "nsp/RunReducer.h"

/// The contract between the viewer and the core library that opens, describes and reads recordings.
///
/// Numbers: block, channel and mark numbers count from 1, sample indexes from 0. Dates are automation dates (days since
/// 30 December 1899 00:00, the time of day as the fraction). Every operation may throw an exception derived from
/// std::exception; OpenRecording alone answers false instead. Everything is called from one thread.
namespace quillon {

/// The two extremes of one run of samples, in the order in which they are drawn: the one that occurs first in the run
/// comes first; the maximum comes first when both are the same sample.
using RunExtremes = nsp::ExtremePair;

/// One block: a stretch of simultaneous sampling of up to 32 acquisition channels at one rate.
/// The physical value of a sample is code x ChannelScale + ChannelOffset, in the channel's unit.
///
/// What describes the block costs nothing. Its scales, offsets and samples are there once it is prepared; a block of a
/// file throws std::logic_error where they are asked for before, whether or not there was anything to prepare.
class RecordingBlock {
  public:
    virtual ~RecordingBlock() = default;

    /// Finds out what the codes stand for, which may take a pass over all samples of the block: those wider than 16
    /// bits are scaled by their extremes. Costs nothing for 16-bit samples and after the first call. Whoever loads a
    /// block to use its samples calls it; who only lists blocks does not. Samples that cannot be read are left out of
    /// account.
    virtual void Prepare() {}
    /// As Prepare, but reads about 2 MiB at most: wide samples get provisional scales, from stretches spread over the
    /// block, that leave room for twice what was seen; codes of samples beyond are clamped.
    virtual void PrepareQuickly() { Prepare(); }
    /// The next piece (about 1 MiB) of the pass that Prepare makes; returns whether more is left. The scales change at
    /// the end only, to those of Prepare, which may be called at any time to finish the pass.
    virtual bool PrepareMore() { return false; }
    [[nodiscard]] virtual bool IsProvisional() const { return false; }
    /// Share of that pass that is done, 0 to 1.
    [[nodiscard]] virtual double PreparedShare() const { return 1.0; }

    /// May be empty.
    [[nodiscard]] virtual std::u16string Title() const = 0;
    /// Date of the first sample.
    [[nodiscard]] virtual double StartTime() const = 0;
    /// Samples per second and channel.
    [[nodiscard]] virtual double SampleRate() const = 0;
    /// Samples per channel.
    [[nodiscard]] virtual std::int32_t SampleCount() const = 0;
    [[nodiscard]] virtual std::int16_t ChannelCount() const = 0;
    /// Acquisition channel number, 0 to 31, unique in the block.
    [[nodiscard]] virtual std::int16_t ChannelNumber(std::int16_t channel) const = 0;
    /// May be empty.
    [[nodiscard]] virtual std::u16string ChannelTitle(std::int16_t channel) const = 0;
    [[nodiscard]] virtual std::u16string ChannelUnit(std::int16_t channel) const = 0;
    /// Scale and offset: of a prepared block, as all that reads samples.
    [[nodiscard]] virtual float ChannelScale(std::int16_t channel) const = 0;
    [[nodiscard]] virtual float ChannelOffset(std::int16_t channel) const = 0;
    /// Whether the scale was chosen so that the channel's samples, wider than 16 bits, fill the codes: whatever is made
    /// of them needs room beyond.
    [[nodiscard]] virtual bool FillsCodes(std::int16_t /*channel*/) const { return false; }
    /// Fills buffer[0 .. count-1] with the codes of samples first .. first+count-1, which must lie inside the block.
    /// Returns 0. Cheap at any first sample.
    virtual std::int32_t ReadCodes(std::int16_t channel, std::int32_t first, std::int32_t count,
                                   std::int16_t* buffer) = 0;
    /// The same samples as values: float(code) x scale + offset in single precision.
    virtual std::int32_t ReadValues(std::int16_t channel, std::int32_t first, std::int32_t count, float* buffer) = 0;
    [[nodiscard]] virtual std::int32_t MarkCount() const = 0;
    /// Sample index, 0 to SampleCount-1.
    [[nodiscard]] virtual std::int32_t MarkPosition(std::int32_t mark) const = 0;
    [[nodiscard]] virtual std::u16string MarkText(std::int32_t mark) const = 0;
    /// How long what is marked lasted, in seconds; 0 where the recording does not tell.
    [[nodiscard]] virtual double MarkDuration(std::int32_t /*mark*/) const { return 0.0; }
    /// Whether nothing was recorded but marks; the one channel is flat.
    [[nodiscard]] virtual bool HasMarksOnly() const { return false; }

    /// Name of the acquisition device; may be empty.
    [[nodiscard]] virtual std::u16string DeviceName() const = 0;
    /// Name of the block for exported files; may be empty.
    [[nodiscard]] virtual std::u16string BlockName() const = 0;
    /// Number of the channel's input on the device, counted from 1.
    [[nodiscard]] virtual std::int16_t InputNumber(std::int16_t channel) const = 0;
    /// Fills buffer[0 .. count*ChannelCount-1] with frames: one code of every channel, in channel order, per sample.
    virtual std::int32_t ReadFrames(std::int32_t first, std::int32_t count, std::int16_t* buffer) = 0;
    /// Fills buffer[0 .. count*ChannelCount-1] with `count` codes of the first channel, then those of the second ...
    virtual std::int32_t ReadRows(std::int32_t first, std::int32_t count, std::int16_t* buffer) {
        for (std::int16_t channel = 1; channel <= ChannelCount(); ++channel, buffer += count)
            ReadCodes(channel, first, count, buffer);
        return 0;
    }
    /// True when the samples are stored as frames, so that ReadFrames is the cheap order; false when the samples of one
    /// channel lie together, so that ReadCodes is.
    [[nodiscard]] virtual bool FramesAreCheap() const = 0;
    /// Samples of every channel that lie in about 1 MiB of the file, at least 1: how much to read at once where other
    /// work must not wait.
    [[nodiscard]] virtual std::int32_t SamplesPerPiece() const {
        return (1 << 19) / (ChannelCount() < 1 ? 1 : ChannelCount());
    }
    /// For a block made of another one, where samples depend on many before them: does a piece of the work that reading
    /// from sample `first` on needs beforehand. False while more of it is left, which the next call for the same sample
    /// goes on with. Reading works without, and may then take long. Throws nothing: what cannot be read is found by
    /// reading.
    virtual bool Approach(std::int32_t /*first*/) { return true; }
    /// How many places far from each other can be read, a few samples of each, where other work must not wait.
    [[nodiscard]] virtual std::int32_t PlacesPerPiece() const { return std::numeric_limits<std::int32_t>::max(); }
    /// Extremes of consecutive runs for several channels in one pass over the stored data.
    /// Samples first .. first+count-1 are cut into runs of `run` samples, the last one shorter where count is no
    /// multiple. out[i] points to room for ceil(count / run) results of channels[i]. Returns false, with nothing
    /// written, where the block has no faster way than ReadCodes. The results equal those of reading every run with
    /// ReadCodes.
    virtual bool ColumnExtremes(std::span<const std::int16_t> channels, std::int32_t first, std::int32_t count,
                                std::int32_t run, std::span<RunExtremes* const> out) = 0;
};

/// A file beside that of a recording.
struct OtherFile {
    std::u16string path;
    std::uint64_t size = 0;  ///< bytes, when it was opened
};

/// One open recording file.
class Recording {
  public:
    virtual ~Recording() = default;
    /// Full path of the file.
    [[nodiscard]] virtual std::u16string FileName() const = 0;
    /// The other files that it is read from, of formats that keep a recording in several; of many only the last ones.
    [[nodiscard]] virtual std::vector<OtherFile> OtherFiles() const { return {}; }
    /// Short name of the file's format, the same in every language: "WAVE", "EDF+C".
    [[nodiscard]] virtual std::u16string FormatName() const = 0;
    /// What kind of file it is and anything odd about it, as one line for the user.
    [[nodiscard]] virtual std::u16string FileInfo() const = 0;
    [[nodiscard]] virtual std::int16_t BlockCount() const = 0;
    /// Reads nothing: the block is not prepared. Throws std::out_of_range for a number outside 1 .. BlockCount.
    [[nodiscard]] virtual std::shared_ptr<RecordingBlock> GetBlock(std::int16_t number) = 0;
    /// Reads the next piece (about 1 MiB) of what opening left out, first what lies near a sample of a block; returns
    /// whether more is left. Marks of the blocks grow, blocks are added, and the last one grows: GetBlock then gives a
    /// new object, and the old one stays as it was. Titles of stretches may change until the end, and so may rate and
    /// scales where all samples decide them, as of tables of text. Where the file cannot
    /// be read, what was found stays, and FileInfo tells up to where.
    virtual bool ReadMore(std::int16_t /*block*/, std::int32_t /*nearSample*/) { return false; }
    /// Share that is read, 0 to 1.
    [[nodiscard]] virtual double ReadShare() const { return 1.0; }
    /// Counts changes of blocks, marks and FileInfo.
    [[nodiscard]] virtual std::int32_t Version() const { return 0; }
    /// Reads all that is left.
    void Complete() {
        for (bool more = true; more;) more = ReadMore(1, 0);
    }
};

/// Opens recordings; one instance lives as long as the process.
class RecordingLibrary {
  public:
    virtual ~RecordingLibrary() = default;
    /// On failure returns false, leaves `recording` empty and keeps the reason for LastErrorText.
    virtual bool OpenRecording(const std::u16string& fileName, std::shared_ptr<Recording>& recording) = 0;
    /// Closes the file and empties the reference.
    virtual void CloseRecording(std::shared_ptr<Recording>& recording) = 0;
    /// Reason of the last failed OpenRecording: what is wrong and where, in the user's language.
    [[nodiscard]] virtual std::u16string LastErrorText() const = 0;
    /// Number n of specific file types.
    [[nodiscard]] virtual std::int32_t FileTypeCount() const = 0;
    /// Display name of type 0 .. n; 0 stands for all supported types.
    [[nodiscard]] virtual std::u16string FileTypeName(std::int32_t index) const = 0;
    /// Wildcard patterns of type 0 .. n, separated by semicolons.
    [[nodiscard]] virtual std::u16string FileTypeMask(std::int32_t index) const = 0;
};

}  // namespace quillon
