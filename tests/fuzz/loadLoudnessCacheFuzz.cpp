#include "fuzz/fuzzTarget.h"
#include "playback/levelling.h"
#include "playback/loudnessState.h"

#include <cfloat>
#include <cmath>

namespace {

// level() hands the gain to the engine as a float: one past the float range has no value there.
void expectFloatGain(const LevelGain& gain) {
    if (!(std::fabs(gain.decibels) <= FLT_MAX))
        fuzzFailure("a gain from the cache is no float");
}

} // namespace

// loudnessCache.json, and the gains the levelling takes from it: each value's own, and the median
// of each family and font for a song that has none (the files named do not exist here).
FUZZ_TARGET(loadLoudnessCache) {
    FuzzFile file("loudnessCache.json", bytes);
    LoudnessTable table = loadLoudnessCache(file.path());
    for (const auto& [key, record] : table) {
        expectFloatGain(gainOfRecord(record));
        expectFloatGain(levelFor(table, LoudnessJob{"/gone", record.fontPath, record.family}));
    }
}
