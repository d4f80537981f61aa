#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <tuple>
#include <vector>

#include "support/FakeRecording.h"
#include "view/WaveformView.h"

namespace quillon::testing {

/// A block of channels of 7 everywhere.
inline std::shared_ptr<FakeBlock> Sevens(std::size_t channels, std::int32_t samples = 100000, double rate = 100.0) {
    auto block = std::make_shared<FakeBlock>();
    block->samples.assign(channels, std::vector<std::int16_t>(static_cast<std::size_t>(samples), 7));
    block->rate = rate;
    return block;
}

/// A graph of 500 x 400 over nothing.
class EmptyViewFixture : public ::testing::Test {
  protected:
    void Load(std::shared_ptr<FakeBlock> block, std::int32_t height = 400) {
        const auto recording = std::make_shared<FakeRecording>();
        recording->name = u"C:\\a.fake";
        recording->blocks = {std::move(block)};
        m_library.files[recording->name] = recording;
        m_document.OpenFile(recording->name, {});
        m_view.LeaveBlock();
        m_view.BlockLoaded();
        if (!m_view.UsesLanes()) {
            EXPECT_EQ(m_view.GetLanes()[0].channels.size(), m_document.Block().channelNumbers.size());
        }
        m_view.Arrange(500, height);
    }
    [[nodiscard]] auto Seen() const {
        return std::tuple(m_axis.ZoomIndex(), m_axis.FirstColumn(), m_view.ScaleY(), m_view.BaseLineShift());
    }

    FakeLibrary m_library;
    FakeServices m_services;
    Document m_document{m_library, m_services};
    WaveformView m_view{m_document};
    const TimeAxis& m_axis = m_view.Axis();
};

/// The same over a block of 100 000 samples of two channels, with three marks.
class ViewFixture : public EmptyViewFixture {
  protected:
    ViewFixture() {
        const auto block = Sevens(2);
        block->samples[0][5] = -100;
        block->marks = {{70000, u"two"}, {30000, u"one"}, {30000, u"same"}};
        Load(block);
    }
};

}  // namespace quillon::testing
