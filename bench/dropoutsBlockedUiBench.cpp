// dropouts-blocked-ui: underruns on the real output while the calling thread sleeps 3 s, as the
// user-interface thread does during a scan or a station connect.
#include "benchSupport.h"
#include "media/encodedAudio.h"
#include "media/midiWriter.h"
#include "media/moduleWriter.h"
#include "playback/engine/engine.h"

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <thread>

int main(int argc, char** argv) {
    std::filesystem::path work = argc > 1 ? argv[1] : "dropouts-blocked-ui";
    std::filesystem::create_directories(work);
    std::string wav = (work / "music.wav").string();
    std::string mp3 = (work / "music.mp3").string();
    std::string mid = (work / "band.mid").string();
    std::string mod = (work / "song.mod").string();
    if (!std::filesystem::exists(mp3)) {
        media::writeMusicWav(wav, 20.0, 44100, 2, 3);
        media::encodeAudio(wav, mp3);
        media::writeMidi(mid, media::denseGeneralMidiSong(20.0));
        media::TrackerSong song;
        song.patterns = 3;
        media::writeMod(mod, song);
    }
    setenv("SDL_AUDIODRIVER", "dummy", 0); // a user may measure the real device instead
    std::vector<double> underruns;
    for (int run = 0; run < 5; ++run) {
        if (!engineInit(AudioOutput::Device))
            return 2;
        pluginLoad("bassmidi.dll");
        FontHandle font = midiFontInit("/usr/share/sounds/sf2/TimGM6mb.sf2");
        MidiFontRecord record{font, -1, 0};
        midiStreamSetFonts(0, &record, 1);
        std::vector<ChannelHandle> channels = {streamCreateFile(mp3), streamCreateFile(mid),
                                               musicLoad(mod), streamCreateFile(wav)};
        for (ChannelHandle h : channels)
            channelPlay(h);
        std::this_thread::sleep_for(std::chrono::seconds(3));
        int total = 0;
        for (ChannelHandle h : channels)
            total += channelUnderruns(h);
        underruns.push_back(total);
        engineFree();
        pluginFreeAll();
    }
    return bench::printRow("dropouts-blocked-ui", bench::median(underruns), "underruns", 0.0) ? 0
                                                                                              : 1;
}
