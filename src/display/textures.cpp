#include "display/textures.h"

#include "display/displayState.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

namespace {

// The folder beside the data files that both the scan at start-up and every load read.
constexpr const char* texturesFolder = "textures";

bool isValidSlot(int slot) {
    return slot == backgroundSlot || slot == lcdSlot;
}

std::string& slotName(DisplayState& st, int slot) {
    return slot == backgroundSlot ? st.currentBkTextureName : st.currentLCDTextureName;
}

bool isListed(const DisplayState& st, const std::string& name) {
    return std::ranges::any_of(st.textures,
                               [&name](const TextureInfo& info) { return info.name == name; });
}

void releaseSlot(DisplayState& st, BitmapInfo& held) {
    if (held.id != 0 && st.bitmapStore != nullptr)
        st.bitmapStore->release(held.id);
    held = {};
}

// Loads the texture when it is listed; a failure's box text joins `boxes`.
void loadInto(DisplayState& st, const std::string& name, int slot,
              std::vector<std::string>& boxes) {
    if (loadTexture(st, name, slot) == TextureLoad::Failed)
        boxes.push_back(textureFailureText(name));
}

} // namespace

void scanTextures(DisplayState& st, const std::string& folder) {
    st.textures.clear();
    if (st.bitmapStore == nullptr)
        return;
    std::error_code ec;
    fs::directory_iterator it(folder, ec);
    // An entry that fails mid-listing ends the walk; what was found so far stays listed.
    for (; !ec && it != fs::directory_iterator(); it.increment(ec)) {
        const fs::path& path = it->path();
        std::error_code kindError;
        if (path.extension() != ".bmp" || !it->is_regular_file(kindError))
            continue;
        std::optional<BitmapInfo> bitmap = st.bitmapStore->load(path.string());
        if (!bitmap)
            continue;
        st.textures.push_back({bitmap->width, bitmap->height, path.stem().string()});
        st.bitmapStore->release(bitmap->id);
    }
    // The directory's own order changes with the file system; the other scans sort too.
    std::ranges::sort(st.textures, {}, &TextureInfo::name);
}

TextureLoad loadTexture(DisplayState& st, const std::string& name, int slot) {
    if (!isValidSlot(slot))
        return TextureLoad::NotListed;
    BitmapInfo& held = st.textureSlots[static_cast<size_t>(slot)];
    releaseSlot(st, held);
    // A name the folder no longer holds (a file removed since the settings were saved) leaves
    // the slot empty, so the plain colour shows; the folder's contents are the user's business.
    if (st.bitmapStore == nullptr || !isListed(st, name))
        return TextureLoad::NotListed;
    std::optional<BitmapInfo> bitmap =
        st.bitmapStore->load(std::string(texturesFolder) + "/" + name + ".bmp");
    if (!bitmap)
        return TextureLoad::Failed;
    held = *bitmap;
    slotName(st, slot) = name;
    return TextureLoad::Loaded;
}

std::string textureFailureText(const std::string& name) {
    return "Failed to load " + name + ".bmp";
}

std::vector<std::string> loadStartupTextures(DisplayState& st) {
    scanTextures(st, texturesFolder);
    std::vector<std::string> boxes;
    loadInto(st, "Leather", backgroundSlot, boxes);
    loadInto(st, "LCD", lcdSlot, boxes);
    return boxes;
}

std::vector<std::string> loadNamedTextures(DisplayState& st) {
    std::vector<std::string> boxes;
    loadInto(st, st.currentBkTextureName, backgroundSlot, boxes);
    loadInto(st, st.currentLCDTextureName, lcdSlot, boxes);
    return boxes;
}

void releaseTextures(DisplayState& st) {
    for (BitmapInfo& held : st.textureSlots)
        releaseSlot(st, held);
}
