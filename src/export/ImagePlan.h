#pragma once

#include <cstdint>

namespace quillon {

/// A rectangle of the picture, in pixels from its upper left corner.
struct ImagePart {
    std::int32_t left = 0;
    std::int32_t top = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
    friend bool operator==(const ImagePart&, const ImagePart&) = default;
};

/// Where the parts of the view stand in its picture: a caption strip; the graph with the amplitude scale to its left;
/// the spectrogram with its frequency scale, where shown; the time scale below the lowest of them.
struct ImagePlan {
    std::int32_t width = 0;
    std::int32_t height = 0;
    ImagePart caption, scaleY, graph, scaleF, spectrogram, scaleX;
};

inline constexpr std::int32_t kImageCaptionHeight = 20;

/// `spectrogramHeight` is 0 where there is none. The frequency scale stands over one more row than the spectrogram.
[[nodiscard]] constexpr ImagePlan PlanImage(std::int32_t graphWidth, std::int32_t graphHeight, std::int32_t scaleYWidth,
                                            std::int32_t spectrogramHeight, std::int32_t scaleXHeight) {
    ImagePlan plan;
    plan.width = scaleYWidth + graphWidth;
    const std::int32_t below = kImageCaptionHeight + graphHeight;
    plan.height = below + spectrogramHeight + scaleXHeight;
    plan.caption = {0, 0, plan.width, kImageCaptionHeight};
    plan.scaleY = {0, kImageCaptionHeight, scaleYWidth, graphHeight};
    plan.graph = {scaleYWidth, kImageCaptionHeight, graphWidth, graphHeight};
    if (spectrogramHeight > 0) {
        plan.scaleF = {0, below, scaleYWidth, spectrogramHeight + 1};
        plan.spectrogram = {scaleYWidth, below, graphWidth, spectrogramHeight};
    }
    plan.scaleX = {scaleYWidth, below + spectrogramHeight, graphWidth, scaleXHeight};
    return plan;
}

}  // namespace quillon
