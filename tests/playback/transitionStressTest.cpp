#include "core/transport.h"
#include "core/volume.h"
#include "playback/radioFixture.h"
#include "playback/slots.h"
#include "radio/segments.h"
#include "radio/walks.h"

#include <chrono>
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

    // realTime: the steady clock and real sleeps, else the manual clock.
    void run(bool realTime, int maxFadeMs, int transitions) {
        if (realTime)
            st.fadeClock = nullptr; // before the first worker starts, which reads it
        for (int step = 0, done = 0; done < transitions; ++step) {
            // Nothing is audible before the first song, so the first step changes the song.
            Action action = step == 0 || draw(0, 9) < 4 ? Action(draw(0, 2)) : Action(draw(3, 5));
            if (action == Action::Previous && st.historyPosition <= 0)
                action = Action::Selection; // at the first row a step back does nothing
            bool changesSong = action <= Action::Previous;
            if (changesSong) {
                st.FADE_DURATION_MS = draw(0, maxFadeMs);
                ++done;
            }
            logOf([&] { perform(action); }); // a line or two for every load, thousands in all
            if (changesSong) {
                ASSERT_NE(audibleHandle(st), 0u) << "step " << step << ": every file loads";
            }
            passTime(realTime);
            // Only the test's own pause may leave the audible song silent.
            ChannelHandle audible = audibleHandle(st);
            ChannelState want =
                pausedByTest.count(audible) ? ChannelState::Paused : ChannelState::Playing;
            ASSERT_EQ(int(channelIsActive(audible)), int(want))
                << "step " << step << ", action " << int(action) << ", freed " << isFreed(audible);
        }
    }

  private:
    enum class Action { Request, Selection, Previous, Pause, Volume, Time };

    int draw(int low, int high) { return std::uniform_int_distribution<int>(low, high)(rng); }

    void perform(Action action) {
        switch (action) {
        case Action::Request:
            request(draw(0, static_cast<int>(st.playlists.size()) - 1));
            startTransition(st);
            st.playRequested = false;
            break;
        case Action::Selection:
            startTransition(st);
            break;
        case Action::Previous:
            previousSong(st);
            break;
        case Action::Pause:
            pauseOrResume();
            break;
        case Action::Volume:
            st.volume = static_cast<float>(draw(0, 100)) / 100.0f;
            applyVolume(st);
            break;
        case Action::Time:
            break; // every step lets time pass
        }
    }

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

    // Frames the listener hears, the workers' clock moving on with them, then every worker whose
    // time has come finishes. Real time also sleeps, so the workers wake while the mixer and the
    // next step run.
    void passTime(bool realTime) {
        if (!realTime) {
            advance(draw(0, 120));
            return;
        }
        nullOutputPull(static_cast<std::size_t>(draw(0, 20)) * 441 / 10);
        std::this_thread::sleep_for(std::chrono::microseconds(draw(0, 3000)));
        settleFadeWorkers(st);
    }

    std::mt19937 rng{20240611};
    std::set<ChannelHandle> pausedByTest;
};

TEST_F(TransitionStress, AThousandTransitionsAtRandomMomentsNeverSilenceTheAudibleSong) {
    run(/*realTime=*/false, /*maxFadeMs=*/200, /*transitions=*/1000);
}

TEST_F(TransitionStress, WorkersOnTheRealClockRacingTheTransportNeverSilenceTheAudibleSong) {
    run(/*realTime=*/true, /*maxFadeMs=*/20, /*transitions=*/400);
}

} // namespace
