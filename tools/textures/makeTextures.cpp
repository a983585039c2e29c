// Writes the player's texture bitmaps (24-bit BMP) into a folder, leaving every file that is
// there alone: makeTextures FOLDER.
//
// Each texture tiles without a seam by construction: every noise is a lattice that covers the
// image a whole number of times, looked up modulo its size, and every stripe makes a whole number
// of turns across the image, so the right edge runs on into the left and the bottom into the top.
// Only integer hashing and IEEE's exactly rounded + - * / sqrt floor are used: the same bytes on
// every machine and every run.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <system_error>
#include <vector>

namespace fs = std::filesystem;

namespace {

struct Rgb {
    double r = 0.0;
    double g = 0.0;
    double b = 0.0;
};

// A pixel's place in the tile: its column and row, and the same as fractions of the side.
struct Spot {
    int size = 0;
    int x = 0;
    int y = 0;
    double u = 0.0;
    double v = 0.0;
};

struct TextureRecipe {
    const char* name;
    int size;
    std::function<Rgb(const Spot&)> pixel;
};

std::uint32_t hash(std::uint32_t x, std::uint32_t y, std::uint32_t seed) {
    std::uint32_t h = seed * 0x9e3779b9u ^ x * 0x85ebca6bu ^ y * 0xc2b2ae35u;
    h ^= h >> 16;
    h *= 0x7feb352du;
    h ^= h >> 15;
    h *= 0x846ca68bu;
    h ^= h >> 16;
    return h;
}

// 0 to 1, from the hash's upper 24 bits.
double unitHash(std::uint32_t x, std::uint32_t y, std::uint32_t seed) {
    return (hash(x, y, seed) >> 8) / 16777216.0;
}

double fade(double t) {
    return t * t * t * (t * (t * 6.0 - 15.0) + 10.0);
}

double fract(double t) {
    return t - std::floor(t);
}

double mix(double a, double b, double t) {
    return a + (b - a) * t;
}

double smoothStep(double edge0, double edge1, double t) {
    double s = std::clamp((t - edge0) / (edge1 - edge0), 0.0, 1.0);
    return s * s * (3.0 - 2.0 * s);
}

std::uint32_t wrap(int i, int cells) {
    return static_cast<std::uint32_t>(((i % cells) + cells) % cells);
}

// Value noise in 0 to 1 over cellsX by cellsY cells that cover the tile once.
double valueNoise(int cellsX, int cellsY, std::uint32_t seed, double u, double v) {
    const double px = u * cellsX;
    const double py = v * cellsY;
    const int ix = static_cast<int>(std::floor(px));
    const int iy = static_cast<int>(std::floor(py));
    const double tx = fade(px - ix);
    const double ty = fade(py - iy);
    auto at = [&](int dx, int dy) {
        return unitHash(wrap(ix + dx, cellsX), wrap(iy + dy, cellsY), seed);
    };
    return mix(mix(at(0, 0), at(1, 0), tx), mix(at(0, 1), at(1, 1), tx), ty);
}

// Octaves of value noise, each with twice the cells and half the weight; 0 to 1.
double fractalNoise(int cellsX, int cellsY, int octaves, std::uint32_t seed, double u, double v) {
    double sum = 0.0;
    double weight = 1.0;
    double total = 0.0;
    for (int octave = 0; octave < octaves; ++octave) {
        sum += weight * valueNoise(cellsX << octave, cellsY << octave, seed + octave, u, v);
        total += weight;
        weight *= 0.5;
    }
    return sum / total;
}

// Distances to the nearest and the second nearest of one jittered point a cell, in cells.
struct CellDistances {
    double nearest = 0.0;
    double second = 0.0;
};

CellDistances cellDistances(int cells, std::uint32_t seed, double u, double v) {
    const double px = u * cells;
    const double py = v * cells;
    const int ix = static_cast<int>(std::floor(px));
    const int iy = static_cast<int>(std::floor(py));
    CellDistances d{9.0, 9.0};
    for (int dy = -2; dy <= 2; ++dy) {
        for (int dx = -2; dx <= 2; ++dx) {
            const std::uint32_t cx = wrap(ix + dx, cells);
            const std::uint32_t cy = wrap(iy + dy, cells);
            const double fx = ix + dx + unitHash(cx, cy, seed) - px;
            const double fy = iy + dy + unitHash(cx, cy, seed + 1000) - py;
            const double dist = std::sqrt(fx * fx + fy * fy);
            if (dist < d.nearest) {
                d.second = d.nearest;
                d.nearest = dist;
            } else if (dist < d.second) {
                d.second = dist;
            }
        }
    }
    return d;
}

Rgb shade(const Rgb& dark, const Rgb& light, double t) {
    t = std::clamp(t, 0.0, 1.0);
    return {mix(dark.r, light.r, t), mix(dark.g, light.g, t), mix(dark.b, light.b, t)};
}

// Creases where two cells meet, pores in a finer set of cells, and a soft mottle. With one point
// a cell the creases would crowd along the lattice's lines and show its grid; a slow warp of up
// to half a cell bends them off it.
Rgb leather(const Spot& s) {
    const double warpU = (fractalNoise(4, 4, 2, 14, s.u, s.v) - 0.5) / 16.0;
    const double warpV = (fractalNoise(4, 4, 2, 15, s.u, s.v) - 0.5) / 16.0;
    const CellDistances grain = cellDistances(16, 11, fract(s.u + warpU), fract(s.v + warpV));
    const double crease = smoothStep(0.0, 0.18, grain.second - grain.nearest);
    const double pore = smoothStep(0.12, 0.26, cellDistances(64, 12, s.u, s.v).nearest);
    const double mottle = fractalNoise(4, 4, 4, 13, s.u, s.v);
    const double tone = (0.42 + 0.3 * mottle) * (0.72 + 0.28 * crease) * (0.8 + 0.2 * pore);
    return shade({40, 20, 8}, {200, 132, 78}, tone + 0.15 * (1.0 - grain.nearest));
}

// A faint dot matrix of four-pixel cells over a cloudy grey. The gaps lie where no edge of the
// tile falls, so the tile's edges meet inside a dot as its neighbours do.
Rgb lcd(const Spot& s) {
    const bool gap = ((s.x + 2) & 3) == 3 || ((s.y + 2) & 3) == 3;
    const double cloud = fractalNoise(8, 8, 4, 23, s.u, s.v);
    const double grain =
        unitHash(static_cast<std::uint32_t>(s.x), static_cast<std::uint32_t>(s.y), 24);
    const double tone = 0.55 + 0.35 * (cloud - 0.5) + 0.08 * (grain - 0.5) - (gap ? 0.2 : 0.0);
    return shade({60, 62, 60}, {215, 218, 214}, tone);
}

// Growth rings that run along x, bent by a slow turbulence; between them fibres, and in dark
// woods short pores. Rings make a whole number of turns across the tile's height.
struct WoodLook {
    std::uint32_t seed;
    int rings;
    double bend;
    double poreShare;
    Rgb dark;
    Rgb light;
};

Rgb wood(const WoodLook& look, const Spot& s) {
    const double turbulence = fractalNoise(2, 4, 4, look.seed, s.u, s.v) - 0.5;
    const double ring = fract(s.v * look.rings + look.bend * turbulence);
    // Latewood darkens slowly through the ring, then gives way to the next ring's light wood.
    const double late = ring < 0.75 ? ring / 0.75 : (1.0 - ring) / 0.25;
    const double fibres = fractalNoise(4, 128, 3, look.seed + 10, s.u, s.v);
    double tone = 0.7 - 0.35 * fade(late) + 0.22 * (fibres - 0.5);
    // A pore is a dash of 16 pixels along the grain, placed afresh on every row.
    const int shift = static_cast<int>(hash(static_cast<std::uint32_t>(s.y), 0, look.seed) & 15u);
    const std::uint32_t dash = wrap(s.x + shift, s.size) / 16u;
    if (unitHash(dash, static_cast<std::uint32_t>(s.y), look.seed + 20) < look.poreShare)
        tone -= 0.12;
    return shade(look.dark, look.light, tone);
}

Rgb lightWood(const Spot& s) {
    return wood({31, 14, 1.6, 0.01, {70, 40, 18}, {196, 142, 86}}, s);
}

Rgb walnut(const Spot& s) {
    return wood({37, 22, 2.4, 0.05, {34, 20, 12}, {150, 100, 62}}, s);
}

// Blotches at several scales with single dark and light grains strewn over them.
Rgb cement(const Spot& s) {
    const double blotch = fractalNoise(4, 4, 5, 43, s.u, s.v);
    const double fine = fractalNoise(64, 64, 2, 44, s.u, s.v);
    const double grain =
        unitHash(static_cast<std::uint32_t>(s.x), static_cast<std::uint32_t>(s.y), 45);
    const double clump =
        unitHash(static_cast<std::uint32_t>(s.x / 2), static_cast<std::uint32_t>(s.y / 2), 46);
    double tone = 0.5 + 0.4 * (blotch - 0.5) + 0.16 * (fine - 0.5);
    if (grain < 0.03 || clump < 0.008)
        tone -= 0.16;
    else if (grain > 0.975)
        tone += 0.12;
    return shade({76, 76, 74}, {196, 194, 188}, tone);
}

// Streaks along x: noise stretched a hundredfold, fine lines over broader sheen.
Rgb brushedSteel(const Spot& s) {
    const double sheen = fractalNoise(1, 8, 3, 53, s.u, s.v);
    const double streaks = fractalNoise(4, 128, 2, 54, s.u, s.v);
    const double tone = 0.55 + 0.3 * (sheen - 0.5) + 0.45 * (streaks - 0.5);
    return shade({116, 120, 128}, {222, 226, 232}, tone);
}

// A 2/2 twill of tows 16 pixels wide: each tow is rounded across its width, shows its fibres
// along its length, and lies over or under its neighbour by the twill's diagonal. The tows are
// shifted half a width so that the tile's edges fall inside tows.
Rgb carbonFiber(const Spot& s) {
    const int x = s.x + 8;
    const int y = s.y + 8;
    const int i = (x / 16) & 15;
    const int j = (y / 16) & 15;
    const bool along = (i + j) % 4 < 2;
    const double across = along ? (y % 16 + 0.5) / 16.0 : (x % 16 + 0.5) / 16.0;
    const double round = 1.0 - (2.0 * across - 1.0) * (2.0 * across - 1.0);
    const double fibres =
        along ? fractalNoise(8, 256, 2, 61, s.u, s.v) : fractalNoise(256, 8, 2, 62, s.u, s.v);
    const double tone = (along ? 0.5 : 0.34) + 0.3 * round + 0.2 * (fibres - 0.5);
    return shade({14, 14, 16}, {120, 122, 130}, tone);
}

// Thin veins over a cloudy white: a diagonal stripe pattern bent by strong turbulence, its
// turns whole across the tile, with a fainter second set at another angle.
Rgb marble(const Spot& s) {
    auto vein = [&](int turnsX, int turnsY, double bend, std::uint32_t seed, double width) {
        const double turbulence = fractalNoise(2, 2, 5, seed, s.u, s.v) - 0.5;
        const double phase = turnsX * s.u + turnsY * s.v + bend * turbulence;
        const double distance = std::abs(2.0 * fract(phase) - 1.0);
        return distance < width ? fade(1.0 - distance / width) : 0.0;
    };
    const double cloud = fractalNoise(4, 4, 5, 71, s.u, s.v);
    const double tone = 0.8 + 0.25 * (cloud - 0.5) - 0.45 * vein(3, 2, 1.2, 72, 0.07) -
                        0.2 * vein(1, -2, 0.9, 73, 0.04);
    return shade({108, 106, 112}, {244, 240, 234}, tone);
}

std::vector<TextureRecipe> recipes() {
    return {{"Leather", 256, leather},         {"LCD", 256, lcd},
            {"wood", 512, lightWood},          {"cement", 256, cement},
            {"CarbonFiber", 256, carbonFiber}, {"Brushed Steel", 256, brushedSteel},
            {"Walnut", 512, walnut},           {"Marble", 512, marble}};
}

void putLe(std::string& out, std::uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i)
        out.push_back(static_cast<char>((value >> (8 * i)) & 0xffu));
}

std::uint8_t toByte(double value) {
    return static_cast<std::uint8_t>(std::clamp(std::floor(value + 0.5), 0.0, 255.0));
}

// A bottom-up 24-bit BMP with the 40-byte info header that every reader knows.
std::string encode(const TextureRecipe& recipe) {
    const int size = recipe.size;
    const std::uint32_t rowBytes = static_cast<std::uint32_t>(size * 3 + 3) & ~3u;
    const std::uint32_t pixelBytes = rowBytes * static_cast<std::uint32_t>(size);
    std::string out;
    out.reserve(54 + pixelBytes);
    out += "BM";
    putLe(out, 54 + pixelBytes, 4);
    putLe(out, 0, 4);
    putLe(out, 54, 4);
    putLe(out, 40, 4);
    putLe(out, static_cast<std::uint32_t>(size), 4);
    putLe(out, static_cast<std::uint32_t>(size), 4);
    putLe(out, 1, 2);
    putLe(out, 24, 2);
    putLe(out, 0, 4);
    putLe(out, pixelBytes, 4);
    putLe(out, 2835, 4); // 72 dots an inch
    putLe(out, 2835, 4);
    putLe(out, 0, 4);
    putLe(out, 0, 4);
    for (int y = size - 1; y >= 0; --y) {
        std::string row;
        for (int x = 0; x < size; ++x) {
            const Rgb c = recipe.pixel(
                {size, x, y, static_cast<double>(x) / size, static_cast<double>(y) / size});
            row.push_back(static_cast<char>(toByte(c.b)));
            row.push_back(static_cast<char>(toByte(c.g)));
            row.push_back(static_cast<char>(toByte(c.r)));
        }
        row.resize(rowBytes, '\0');
        out += row;
    }
    return out;
}

// Written aside and renamed, so that an interrupted run leaves no cut bitmap that a later run
// would take for the user's own.
bool writeTexture(const fs::path& file, const std::string& bytes) {
    const fs::path part = file.string() + ".part";
    {
        std::ofstream out(part, std::ios::binary | std::ios::trunc);
        out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        if (!out.flush())
            return false;
    }
    std::error_code ec;
    fs::rename(part, file, ec);
    return !ec;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: makeTextures FOLDER\n");
        return 2;
    }
    const fs::path folder = argv[1];
    std::error_code ec;
    fs::create_directories(folder, ec);
    int failures = 0;
    for (const TextureRecipe& recipe : recipes()) {
        const fs::path file = folder / (std::string(recipe.name) + ".bmp");
        if (fs::exists(fs::symlink_status(file, ec)))
            continue;
        if (!writeTexture(file, encode(recipe))) {
            std::fprintf(stderr, "makeTextures: cannot write %s\n", file.string().c_str());
            ++failures;
        }
    }
    return failures == 0 ? 0 : 1;
}
