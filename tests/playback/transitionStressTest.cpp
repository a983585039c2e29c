#include "core/transport.h"
#include "core/volume.h"
#include "playback/radioFixture.h"
#include "playback/slots.h"

#include <chrono>
#include <functional>
#include <random>
#include <set>
#include <thread>

namespace {

// Many transitions at random moments of random fades, between every family, with pauses and
// volume changes in between: whatever the fade-out workers clear when they wake, the song that
// is audible keeps playing.
class TransitionStress : public Radio {
  protected:
    void SetUp() override {
        Radio::SetUp();
        setDefaultFont();
        // Short files loop often; the module is long enough never to reach its end, where it
        // would stop by itself.
        addPlaylists({sine("a.flac", 1.5, 441), sine("b.flac", 0.6, 660), sine("c.flac", 3.0, 880),
                      module("d.mod", 8), midi("e.mid", 3.0)});
        st.rawRadio = 0;
    }

    // realTime: the steady clock and real sleeps, so that the workers wake while the transport
    // and the mixer run; else the manual clock.
    void run(bool realTime, int maxFadeMs, int transitions) {
        if (realTime)
            st.fadeClock = nullptr; // before the first worker starts, which reads it
        // The first three change the song: a request, a new selection, a step back.
        const std::function<void()> actions[] = {
            [&] {
                request(draw(0, static_cast<int>(st.playlists.size()) - 1));
                startTransition(st);
                st.playRequested = false;
            },
            [&] { startTransition(st); },
            [&] { previousSong(st); },
            [&] { pauseOrResume(); },
            [&] {
                st.volume = static_cast<float>(draw(0, 100)) / 100.0f;
                applyVolume(st);
            },
            [] {}, // only time passes
        };
        for (int step = 0, done = 0; done < transitions; ++step) {
            // Nothing is audible before the first song, so the first step changes the song.
            int action = step == 0 || draw(0, 9) < 4 ? draw(0, 2) : draw(3, 5);
            if (action == 2 && st.historyPosition <= 0)
                action = 1; // at the first row a step back does nothing
            if (action <= 2) {
                st.FADE_DURATION_MS = draw(0, maxFadeMs);
                ++done;
            }
            logOf(actions[action]); // a line or two for every load, thousands in all
            if (action <= 2) {
                ASSERT_NE(audibleHandle(st), 0u) << "step " << step << ": every file loads";
            }
            if (realTime) {
                nullOutputPull(static_cast<std::size_t>(draw(0, 20)) * 441 / 10);
                std::this_thread::sleep_for(std::chrono::microseconds(draw(0, 3000)));
                settleFadeWorkers(st);
            } else {
                advance(draw(0, 120));
            }
            // Only the test's own pause may leave the audible song silent.
            ChannelHandle audible = audibleHandle(st);
            ChannelState want =
                pausedByTest.count(audible) ? ChannelState::Paused : ChannelState::Playing;
            ASSERT_EQ(int(channelIsActive(audible)), int(want))
                << "step " << step << ", action " << action << ", freed " << isFreed(audible);
        }
    }

  private:
    int draw(int low, int high) { return std::uniform_int_distribution<int>(low, high)(rng); }

    // The pause button, remembering which channels it paused.
    void pauseOrResume() {
        bool tracker = st.currentMusicType == musicTypeTracker;
        const ChannelHandle pair[2] = {tracker ? st.trackerStream : st.musicStream,
                                       tracker ? st.trackerStreamNext : st.musicStreamNext};
        togglePause(st);
        for (ChannelHandle handle : pair) {
            if (channelIsActive(handle) == ChannelState::Paused)
                pausedByTest.insert(handle);
            else
                pausedByTest.erase(handle);
        }
    }

    std::mt19937 rng{20240611};
    std::set<ChannelHandle> pausedByTest;
};

TEST_F(TransitionStress, AThousandTransitionsAtRandomMomentsNeverSilenceTheAudibleSong) {
    run(/*realTime=*/false, /*maxFadeMs=*/200, /*transitions=*/1000);
}

// Only here do the workers run while the transport does, which ThreadSanitizer watches in
// scripts/sanitize; the manual clock lets them run only while the test waits for them.
TEST_F(TransitionStress, WorkersOnTheRealClockRacingTheTransportNeverSilenceTheAudibleSong) {
    run(/*realTime=*/true, /*maxFadeMs=*/20, /*transitions=*/400);
}

} // namespace
