#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "app/win/RoomParts.h"
#include "view/win/ReportPainter.h"

namespace quillon {

class GraphPane;
class LongCommand;
class SpectrogramPane;

/// Saves and prints a picture of what the view shows, with its scales, times and titles, and reports the outcome in the
/// panel "Status".
class PictureCommands {
  public:
    /// The rooms that it works with, and what all rooms share; all must outlive it.
    struct Parts {
        const RoomParts& shared;
        GraphPane& graph;
        SpectrogramPane& spectrogram;
        LongCommand& window;
    };
    explicit PictureCommands(const Parts& parts) : m_parts(parts), m_shared(parts.shared) {}

    // To be set by the owner.
    std::function<void()> onDialog;                                 ///< a dialog is going to be shown
    std::function<bool()> onPictures;                               ///< see DialogCommands
    std::function<void(const std::function<void()>& work)> onWork;  ///< runs work that takes long
    std::function<bool()> onPending;  ///< called periodically by long work; false stops it

    void Save();
    /// On one page.
    void Print();

  private:
    /// Calls use(report, painter, images) with the report drawn; false when the user has stopped that.
    using Use = std::function<void(const ViewReport& report, const ReportPainter& painter,
                                   const std::vector<ReportImage>& images)>;
    [[nodiscard]] bool WithReport(int scale, const GraphColors& colors, const Use& use);
    /// The spectrogram with its scales below the graph, where it is shown; makes room for it.
    [[nodiscard]] std::vector<ReportImage> SpectrogramImages(ViewReport& report) const;
    [[nodiscard]] int LargestScale() const;
    void Write(const std::u16string& name, std::int32_t type);
    void WriteFile(const std::u16string& name, std::span<const std::byte> bytes, TextSize size);
    void PrintOn(HDC printer);
    [[nodiscard]] const ViewBlock& Block() const { return m_shared.document.Block(); }
    /// In "Status", the words of the string table first.
    void Tell(int text, const std::u16string& what = {}) const;

    Parts m_parts;
    const RoomParts& m_shared;
    std::int32_t m_type = 1;    ///< chosen last
    std::u16string m_folder{};  ///< saved to last
};

}  // namespace quillon
