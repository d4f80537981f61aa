#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// How a block is cut into pieces of equal length, and what the pieces' files are called.
namespace quillon {

/// Sizes and steps offered.
inline constexpr std::array<std::int32_t, 10> kSplitSeconds = {1, 2, 5, 10, 20, 30, 60, 120, 300, 600};
inline constexpr std::array<std::int32_t, 10> kSplitSamples = {100,  200,   500,   1000,  2000,
                                                               5000, 10000, 20000, 50000, 100000};

/// The size to begin with: the largest on offer that gives at least ten pieces of a block of that length, else the
/// smallest on offer.
[[nodiscard]] std::int32_t FirstSplitSize(std::span<const std::int32_t> offered, double length);

enum class EntryFault {
    None,
    NotPositive,  ///< or no number at all
    TooLarge,     ///< more samples than 32 bits count
};

/// A size or step typed by the user.
struct SplitEntry {
    double number = 0.0;       ///< in the unit of the entry
    std::int32_t samples = 0;  ///< at least 1 where there is no fault
    EntryFault fault = EntryFault::None;
};

/// Seconds have a point, a comma or the system's separator before decimals and become the nearest whole number of
/// samples at the block's rate.
[[nodiscard]] SplitEntry ParseSplitSeconds(std::u16string_view text, double rate, char16_t separator = u'.');
[[nodiscard]] SplitEntry ParseSplitSamples(std::u16string_view text);

/// Name of the recording without folder and extension.
[[nodiscard]] std::u16string SplitBaseName(std::u16string_view recording);
/// The folder that the pieces of a recording go to: beside it, called as its base name. Blanks and points at the end
/// are left out, which Windows drops in some places only. A name without an extension gets "_pieces", as the recording
/// itself stands in the place.
[[nodiscard]] std::u16string SplitFolderName(std::u16string_view recording);
/// "wav" for a recording with that extension in any letter case, else "bin".
[[nodiscard]] std::u16string SplitExtension(std::u16string_view recording);

struct SplitPlan {
    std::int32_t blockSamples = 0;  ///< per channel
    std::int32_t size = 1;          ///< samples of a piece; at least 1
    std::int32_t step = 1;          ///< samples from the start of a piece to that of the next; at least 1
    bool sampleNames = false;       ///< names contain the range of samples, else the number of the piece
    std::u16string prefix;          ///< prefix of the names
    std::u16string extension;       ///< of names by number; those by samples end in ".bin", or in that of EDF+
    bool edfPlus = false;           ///< the pieces are EDF+ with marks, whatever else their extension may mean

    /// Whole pieces; a single one that is cut short where the size exceeds the block by less than a step. 0 or less:
    /// no piece can be cut.
    [[nodiscard]] std::int64_t PieceCount() const;

    // Pieces count from 0 here.

    /// Counts from 1.
    [[nodiscard]] std::int32_t FirstSample(std::int64_t piece) const;
    /// Samples that the piece's file gets.
    [[nodiscard]] std::int32_t SampleCount(std::int64_t piece) const;
    /// Name of the piece's file. Ranges of samples count from 0. All numbers have as many digits as the largest.
    [[nodiscard]] std::u16string Name(std::int64_t piece) const;
    /// Share of the run that is done within a piece, of which `done` samples of `total` are written; whole percents.
    [[nodiscard]] std::int32_t Percent(std::int64_t piece, std::int32_t done, std::int32_t total) const;
    /// A name with "#" for numbers.
    [[nodiscard]] std::u16string ExampleName() const;
    /// The piece whose file has that name, letter case apart.
    [[nodiscard]] std::optional<std::int64_t> PieceOf(std::u16string_view name) const;
};

/// State of the output folder's path.
struct SplitFolderState {
    enum class Kind {
        Missing,
        Folder,
        NotFolder,
        Unreadable,  ///< or out of reach
    };
    Kind kind = Kind::Missing;
    bool holdsRecording = false;        ///< the open one, under whatever name
    std::vector<std::u16string> files;  ///< names, without sub-folders
};

enum class SplitObstacle { None, NoPieces, NameTooLong, NotFolder, Unreadable, HoldsRecording };

/// Obstacle to a run, determined from the folder's content before anything is changed.
[[nodiscard]] SplitObstacle FindSplitObstacle(const SplitPlan& plan, const SplitFolderState& folder);

/// Files that the run would overwrite.
[[nodiscard]] std::int64_t CountReplaced(const SplitPlan& plan, const SplitFolderState& folder);

}  // namespace quillon
