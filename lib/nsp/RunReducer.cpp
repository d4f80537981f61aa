#include "nsp/RunReducer.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <vector>

#include "nsp/FrameRuns.h"
#include "nsp/PackedRuns.h"

namespace quillon::nsp {

PlanarRunReducer::PlanarRunReducer(std::int32_t run, ExtremePair* out) : m_run(run), m_out(out) {
    if (run < 1) throw std::invalid_argument("a run has at least one sample");
}

void PlanarRunReducer::Feed(const std::int16_t* samples, std::size_t count) {
    auto filled = static_cast<std::size_t>(m_filled);
    Extremes state{m_maximum, m_minimum, m_minimumFirst};
    PackedRuns<1>::Feed(samples, count, static_cast<std::size_t>(m_run), filled, {&state, 1}, {&m_out, 1});
    m_filled = static_cast<std::int32_t>(filled);
    m_maximum = state.maximum;
    m_minimum = state.minimum;
    m_minimumFirst = state.minimumFirst;
}

void PlanarRunReducer::Finish() {
    if (m_filled == 0) return;
    *m_out++ = Extremes{m_maximum, m_minimum, m_minimumFirst}.Pair();
    m_filled = 0;
}

struct FrameRunReducer::State {
    virtual ~State() = default;
    State() = default;
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    virtual void Feed(const std::int16_t* frames, std::size_t frameCount) = 0;
    virtual void Finish() = 0;
};

namespace {

template <typename Base, std::size_t Channels>
struct PackedState final : Base {
    PackedState(std::span<const std::size_t> selected, std::size_t run, std::span<ExtremePair* const> out)
        : m_run(run) {
        for (std::size_t i = 0; i < selected.size(); ++i) m_out[selected[i]] = out[i];
    }
    void Feed(const std::int16_t* frames, std::size_t frameCount) override {
        PackedRuns<Channels>::Feed(frames, frameCount, m_run, m_filled, m_extremes, m_out);
    }
    void Finish() override { PackedRuns<Channels>::Finish(m_filled, m_extremes, m_out); }

    std::size_t m_run;
    std::size_t m_filled = 0;
    std::array<Extremes, Channels> m_extremes;
    std::array<ExtremePair*, Channels> m_out{};
};

template <typename Base>
struct WideState final : Base {
    WideState(std::size_t channels, std::span<const std::size_t> selected, std::size_t run,
              std::span<ExtremePair* const> out)
        : m_runs(channels, selected, run, out) {}
    void Feed(const std::int16_t* frames, std::size_t frameCount) override { m_runs.Feed(frames, frameCount); }
    void Finish() override { m_runs.Finish(); }

    FrameRuns m_runs;
};

}  // namespace

FrameRunReducer::FrameRunReducer(std::size_t channels, std::span<const std::size_t> selected, std::int32_t run,
                                 std::span<ExtremePair* const> out) {
    if (run < 1 || channels < 1 || selected.size() != out.size() ||
        std::any_of(selected.begin(), selected.end(), [&](std::size_t channel) { return channel >= channels; })) {
        throw std::invalid_argument("runs of frames");
    }
    if (selected.empty()) return;
    const auto length = static_cast<std::size_t>(run);
    switch (channels) {
        case 1: m_state = std::make_unique<PackedState<State, 1>>(selected, length, out); break;
        case 2: m_state = std::make_unique<PackedState<State, 2>>(selected, length, out); break;
        case 4: m_state = std::make_unique<PackedState<State, 4>>(selected, length, out); break;
        default: m_state = std::make_unique<WideState<State>>(channels, selected, length, out); break;
    }
}

FrameRunReducer::~FrameRunReducer() = default;

void FrameRunReducer::Feed(const std::int16_t* frames, std::size_t frameCount) {
    if (m_state) m_state->Feed(frames, frameCount);
}

void FrameRunReducer::Finish() {
    if (m_state) m_state->Finish();
}

}  // namespace quillon::nsp
