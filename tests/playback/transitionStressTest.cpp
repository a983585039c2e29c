#include "playback/crossfade.h"
#include "radio/segments.h"
#include "radio/walks.h"
#include "radioFixture.h"

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
        FontHandle font = midiFontInit(timidityFont);
        ASSERT_NE(font, 0u);
        MidiFontRecord record{font, -1, 0};
        ASSERT_TRUE(midiStreamSetFonts(0, &record, 1));
        // Short files loop often; the module is long enough never to reach its end, where it
        // would stop by itself.
        addPlaylists({sine("a.flac", 1.5, 441), sine("b.flac", 0.6, 660), sine("c.flac", 3.0, 880),
                      module("d.mod", 8), midi("e.mid", 3.0)});
        st.rawRadio = 0;
    }

    // What a walk does, and how much of it.
    struct Walk {
        bool realTime = false; // the steady clock and real sleeps, or the manual clock
        int maxFadeMs = 200;
        int transitions = 1000;
    };

    enum class Action { Request, Selection, Previous, Pause, Volume, Time };

    void run(const Walk& walk) {
        if (walk.realTime)
            st.fadeClock = nullptr; // before the first worker starts, which reads it
        int transitions = 0;
        for (int step = 0; transitions < walk.transitions; ++step) {
            // Nothing is audible before the first song.
            Action action = step == 0 || draw(0, 9) < 4 ? transition() : other();
            if (changesSong(action)) {
                st.FADE_DURATION_MS = draw(0, walk.maxFadeMs);
                ++transitions;
            }
            quietly([&] { perform(action); });
            if (changesSong(action)) {
                ASSERT_NE(audibleHandle(st), 0u) << "step " << step << ": every file loads";
            }
            passTime(walk);
            ASSERT_TRUE(audibleIsUntouched())
                << "step " << step << ", action " << static_cast<int>(action);
        }
    }

  private:
    int draw(int low, int high) { return std::uniform_int_distribution<int>(low, high)(rng); }
    static bool changesSong(Action action) { return action <= Action::Previous; }
    Action transition() {
        int kind = draw(0, 2);
        if (kind == 2 && st.historyPosition <= 0)
            kind = 1; // at the first row a step back does nothing
        return static_cast<Action>(kind);
    }
    Action other() { return static_cast<Action>(draw(3, 5)); }

    // The player's log says a line or two for every load; a thousand of them say nothing here.
    template <typename Work> static void quietly(Work work) {
        testing::internal::CaptureStdout();
        work();
        testing::internal::GetCapturedStdout();
    }

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

    // The pause button, remembering which channels it paused, since only it may leave the
    // audible song silent.
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
    void passTime(const Walk& walk) {
        if (!walk.realTime) {
            advance(draw(0, 120));
            return;
        }
        nullOutputPull(static_cast<std::size_t>(draw(0, 20)) * 441 / 10);
        std::this_thread::sleep_for(std::chrono::microseconds(draw(0, 3000)));
        settleFadeWorkers(st);
    }

    testing::AssertionResult audibleIsUntouched() {
        ChannelHandle audible = audibleHandle(st);
        ChannelState want =
            pausedByTest.count(audible) ? ChannelState::Paused : ChannelState::Playing;
        ChannelState state = channelIsActive(audible);
        if (state == want)
            return testing::AssertionSuccess();
        return testing::AssertionFailure()
               << "the audible channel " << audible << " is in state " << static_cast<int>(state)
               << ", not " << static_cast<int>(want) << (isFreed(audible) ? " (freed)" : "")
               << "; fade worker running " << st.fadeWorkerRunning << ", next slot "
               << st.nextSlotActive;
    }

    std::mt19937 rng{20240611};
    std::set<ChannelHandle> pausedByTest;
};

TEST_F(TransitionStress, AThousandTransitionsAtRandomMomentsNeverSilenceTheAudibleSong) {
    run(Walk{.realTime = false, .maxFadeMs = 200, .transitions = 1000});
}

TEST_F(TransitionStress, WorkersOnTheRealClockRacingTheTransportNeverSilenceTheAudibleSong) {
    run(Walk{.realTime = true, .maxFadeMs = 20, .transitions = 400});
}

} // namespace
