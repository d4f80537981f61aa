#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <tuple>
#include <vector>

#include "support/FakeRecording.h"
#include "view/WaveformView.h"

namespace quillon::testing {

/// A graph of 500 x 400 over a block of 100 000 samples of two channels, with three marks.
class ViewFixture : public ::testing::Test {
  protected:
    ViewFixture() {
        auto block = std::make_shared<FakeBlock>();
        block->samples.assign(2, std::vector<std::int16_t>(100000, 7));
        block->samples[0][5] = -100;
        block->marks = {{70000, u"two"}, {30000, u"one"}, {30000, u"same"}};
        Load(block);
    }
    void Load(std::shared_ptr<FakeBlock> block) {
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
        m_view.Arrange(500, 400);
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

}  // namespace quillon::testing
