#include "fuzz/fuzzTarget.h"
#include "update/versionCheck.h"

#include <string>

// What checkForNewVersion does with an answer, without the network: the body as it arrives in
// pieces, kept up to its limit, compared, and the Update window's text made from it. The first
// byte chooses the cuts, the second how often the rest comes again (a body past the limit).
FUZZ_TARGET(checkForNewVersion) {
    if (bytes.size() < 2)
        return;
    unsigned cuts = static_cast<unsigned char>(bytes[0]);
    int repeats = 1 + static_cast<unsigned char>(bytes[1]);
    bytes.remove_prefix(2);
    std::string sent;
    for (int i = 0; i < repeats; ++i)
        sent += bytes;

    std::string body;
    for (FuzzChunks chunks(sent, cuts); !chunks.done();)
        if (!appendVersionBody(body, chunks.next()))
            break;
    if (body.size() > 64 * 1024 || !std::string_view(sent).starts_with(body))
        fuzzFailure("the body kept is not the start of the answer within its limit");
    bool newer = isNewerVersion(body);
    if (updateText(newer, body).empty())
        fuzzFailure("the Update window has no text");
}
