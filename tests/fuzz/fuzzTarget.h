#pragma once
#include <string>
#include <string_view>
#include <vector>

// A fuzz target feeds any bytes to one of the player's readers. The same sources build into the
// libFuzzer binary of build-fuzz/ (clang, ASan and UBSan, scripts/fuzz) and into fuzzRegressions
// of the normal build, which replays the committed inputs; both find a target by its name. A
// target aborts where the reader broke a promise it makes (a changed input file, a set-aside copy
// that is not the file), so that such an input counts as a crash too.
using FuzzFunction = void (*)(std::string_view bytes);

struct FuzzTarget {
    const char* name;
    FuzzFunction run;
};

// Called by FUZZ_TARGET before main; true so that it can initialise a static.
bool registerFuzzTarget(const char* name, FuzzFunction run);
// Null when no target has this name.
FuzzFunction findFuzzTarget(std::string_view name);
std::vector<FuzzTarget> fuzzTargets();

#define FUZZ_TARGET(name)                                                                          \
    static void name##Fuzz(std::string_view bytes);                                                \
    [[maybe_unused]] static const bool name##Registered = registerFuzzTarget(#name, name##Fuzz);   \
    static void name##Fuzz(std::string_view bytes)

// The process's private folder on /dev/shm (the temporary folder where there is none), emptied
// before each input and removed at exit; the readers' data folder, game folder and files.
const std::string& fuzzFolder();
// A second private folder for what a target makes once and keeps (a MIDI file, a soundfont).
const std::string& fuzzFixtureFolder();

// One input as the file `name` in fuzzFolder(), made on construction. On destruction the reader
// must have left the file as it was (unless mayChange) and set aside nothing but its bytes as
// NAME.bad-*; then the folder is emptied, its .bad-* copies with it.
class FuzzFile {
  public:
    FuzzFile(const std::string& name, std::string_view bytes, bool mayChange = false);
    ~FuzzFile();
    FuzzFile(const FuzzFile&) = delete;
    FuzzFile& operator=(const FuzzFile&) = delete;

    const std::string& path() const { return path_; }

  private:
    std::string path_;
    std::string bytes_;
    bool mayChange_;
};

// The path of the save of a round ("first", "second") in the "saved" folder of fuzzFolder(): a
// folder of the round's name, made here, holding a file of the input's name.
std::string fuzzSavePath(const std::string& round, const std::string& input);
// The check of expectStableSaves, once both saves are made.
void expectSameSaves(const std::string& first, const std::string& second);

// The promise of every file the player both writes and reads: what a reader took, saved, reads
// again without a complaint (nothing set aside), and saved once more gives the same text.
// readAndSave(from, to) reads the file `from` into a fresh state as the player does and saves that
// state as `to`; both have the input's file name, each in a folder of its own (a data folder).
template <typename ReadAndSave>
void expectStableSaves(const std::string& path, ReadAndSave readAndSave) {
    const std::string first = fuzzSavePath("first", path);
    const std::string second = fuzzSavePath("second", path);
    readAndSave(path, first);
    readAndSave(first, second);
    expectSameSaves(first, second);
}

// Aborts with the message on the error stream: the reader broke its promise.
[[noreturn]] void fuzzFailure(const std::string& what);

// Cuts bytes into the pieces a reader fed piece by piece gets from the network: sizes of 1 to 300
// bytes drawn from a seed, so that an input's first byte can vary the cuts and not its content.
class FuzzChunks {
  public:
    FuzzChunks(std::string_view bytes, unsigned seed) : rest_(bytes), state_(seed) {}
    bool done() const { return rest_.empty(); }
    std::string_view next();

  private:
    std::string_view rest_;
    unsigned state_;
};
