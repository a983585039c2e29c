# Sourced by the e2e scripts. makeSineLibrary GAME lays out a small library of the game's layout
# (the demo library of tools/layout-run takes a minute and more to encode): three 30-second sine
# MP3s in "Mp3 Songs/Sines", the other music folders empty, and a soundfont from Debian's package,
# so that no box waits for a click. Fails when ffmpeg could not make a song.
makeSineLibrary() {
    local game="$1" hz
    mkdir -p "$game/data" "$game/HarpTone/"{"MIDI Songs","Tracker Songs","Mp3 Songs/Sines",SoundFonts}
    ln -s /usr/share/sounds/sf2/TimGM6mb.sf2 "$game/HarpTone/SoundFonts/TimGM6mb.sf2"
    for hz in 440 550 660; do
        ffmpeg -nostdin -loglevel error -f lavfi -i "sine=frequency=$hz:duration=30" \
            -c:a libmp3lame "$game/HarpTone/Mp3 Songs/Sines/tone_$hz.mp3" || return 1
    done
}
