// The entry of the libFuzzer binary: one binary holds every target, and MTR_FUZZ_TARGET names the
// one this process feeds (libFuzzer's merge and fork runs start it again with the same
// environment). One link with the sanitizers instead of one per target spares the shared cores.
#include "fuzz/fuzzTarget.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

// MTR_FUZZ_TARGET=list prints the names, one a line, for scripts/fuzz.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
    const char* name = std::getenv("MTR_FUZZ_TARGET");
    if (name && std::string_view(name) == "list") {
        for (const FuzzTarget& target : fuzzTargets())
            std::printf("%s\n", target.name);
        std::exit(0);
    }
    if (!name || !findFuzzTarget(name)) {
        std::fprintf(stderr, "Set MTR_FUZZ_TARGET to one of:");
        for (const FuzzTarget& target : fuzzTargets())
            std::fprintf(stderr, " %s", target.name);
        std::fprintf(stderr, "\n");
        std::exit(2);
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const FuzzFunction run = findFuzzTarget(std::getenv("MTR_FUZZ_TARGET"));
    run(std::string_view(reinterpret_cast<const char*>(data), size));
    return 0;
}
