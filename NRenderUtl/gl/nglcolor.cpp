// The colour model: palette tables and schemes, the complement rule that keeps colours visible against the
// window background, the global transparency, and the issuing of colours to GL.
#include "NRenderUtl/gl/nglcolortables.h"
#include "NRenderUtl/gl/nglrecord.h"
#include "NRenderUtl/host/hostgl.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

std::int32_t NglMaxColor = kSchemeColorCount;

namespace {

constexpr int kTableSize = 256;
constexpr int kHighlightIndex = 32;
constexpr int kSelectionIndex = 33;
// Hosts ask for white by one index; it is issued as another, which schemes keep white.
constexpr int kWhiteIndex = 15;
constexpr int kIssuedWhiteIndex = 63;
// A colour this close to the background in every channel cannot be seen on it.
constexpr int kComplementThreshold = 13;
// A background is light from this sum of red, green and blue on.
constexpr int kLightBackgroundSum = 382;
constexpr NgColorLong kAlphaMask = 0xFF000000;
constexpr NgColorLong kWhite = 0xFFFFFFFF;

using ColorTable = std::array<NgColorLong, kTableSize>;

ColorTable schemeTable(int scheme) {
    ColorTable table{};
    for (int i = 0; i < kSchemeColorCount; ++i)
        table[i] = kSchemeColors[i][scheme];
    return table;
}

/// What a computed complement table was computed from.
struct ComplementKey {
    int count;
    const NgColorLong* source;
    NgColorLong background;
    bool operator==(const ComplementKey&) const = default;
};

/// A table that is looked up: the host's, or one of this room.
struct Palette {
    const NgColorLong* entries = nullptr;
    int count = 0;
};

struct ColorState {
    ColorTable ownTable = schemeTable(0);
    int scheme = 0;
    NgColorLong blending = 0x7F800000; // bits 24 to 31 are the alpha of every issued colour
    NgColorLong highlight = 0xFF2020FF;
    NgColorLong selection = 0;
    ColorTable computed{}; // complement table as computed here
    Palette complement;    // complement table in force: the computed one or one of the host's
    ComplementKey key{};   // of the computed table
    bool hasKey = false;
    bool forceComplement = false;
    int hiddenIndex = 0;
    NgColorLong hiddenColor = 0;
    int shadedWireframe1 = 0;
    int shadedWireframe2 = 0; // has no setter: hosts only read it
};

ColorState& colors() {
    static ColorState state;
    return state;
}

int byteOf(NgColorLong color, int byte) {
    return static_cast<int>((color >> (8 * byte)) & 0xFF);
}

int brightness(NgColorLong color) {
    return byteOf(color, 0) + byteOf(color, 1) + byteOf(color, 2);
}

bool isLightBackground() {
    return brightness(nglRecord().live.backgroundColor) >= kLightBackgroundSum;
}

NgColorLong inverted(NgColorLong color) {
    return color ^ ~kAlphaMask; // 255 - c for each of red, green and blue
}

bool isCloseTo(NgColorLong a, NgColorLong b) {
    for (int byte = 0; byte < 3; ++byte)
        if (std::abs(byteOf(a, byte) - byteOf(b, byte)) > kComplementThreshold)
            return false;
    return true;
}

/// An index that the palette does not have takes the library table's entry, one that neither has is white.
NgColorLong lookUp(const Palette& palette, int index) {
    if (palette.entries && index >= 0 && index < palette.count)
        return palette.entries[index];
    return index >= 0 && index < kTableSize ? colors().ownTable[index] : kWhite;
}

NgColorLong colorOfIndex(const Palette& palette, int index) {
    if (index == kSelectionIndex)
        return colors().selection;
    return index == kHighlightIndex ? colors().highlight : lookUp(palette, index);
}

/// The table of ngl_set_color; an empty palette makes the lookup use the library table.
Palette drawingPalette() {
    const _NglInfoStr& info = nglRecord().live;
    if (info.noComplement == 0)
        return colors().complement;
    return info.noComplement == 1 ? Palette{info.palette, info.colorCount} : Palette{};
}

void fillComplement(int count, const NgColorLong* source, NgColorLong background) {
    ColorTable& table = colors().computed;
    for (int i = 0; i < count; ++i) {
        const bool reserved = i == kHighlightIndex || i == kSelectionIndex;
        const bool unseen = !reserved && isCloseTo(source[i], background);
        table[i] = unseen ? inverted(source[i]) | kAlphaMask : source[i];
    }
}

/// Puts the complement table of a palette in force; one computed before from the same palette is used again.
void computeComplement(int count, const NgColorLong* source) {
    ColorState& state = colors();
    const int entries = source ? std::clamp(count, 0, kTableSize) : 0;
    const ComplementKey key{count, source, nglRecord().live.backgroundColor};
    if (state.forceComplement || !state.hasKey || state.key != key)
        fillComplement(entries, source, key.background);
    state.key = key;
    state.hasKey = true;
    state.forceComplement = false;
    state.complement = {state.computed.data(), entries};
}

NgColorLong complementColor(int index) {
    ColorState& state = colors();
    if (!state.complement.entries)
        NglUpdateColor(kTableSize, state.ownTable.data());
    return colorOfIndex(state.complement, index);
}

void issueBytes(NgColorLong color) {
    glColor4ub(static_cast<GLubyte>(byteOf(color, 0)), static_cast<GLubyte>(byteOf(color, 1)),
               static_cast<GLubyte>(byteOf(color, 2)), static_cast<GLubyte>(byteOf(color, 3)));
    nglRecord().colorLong = color;
}

float unit(int byte) {
    return static_cast<float>(byte / 255.0);
}

} // namespace

// --- by index ----------------------------------------------------------------------------------------------

void ngl_set_color(int index) {
    if (index < 0)
        return;
    if (index == kWhiteIndex)
        index = kIssuedWhiteIndex;
    const NgColorLong color = colorOfIndex(drawingPalette(), index);
    nglRecord().colorLong = color;
    // The colour's own alpha is not drawn with: transparency is global.
    glColor4f(unit(byteOf(color, 0)), unit(byteOf(color, 1)), unit(byteOf(color, 2)),
              unit(byteOf(colors().blending, 3)));
    nglRecord().colorIndex = index;
}

void ngl_set_color_no_complement(int index) {
    std::int32_t& mode = nglRecord().live.noComplement;
    const std::int32_t previous = mode;
    mode = 1;
    ngl_set_color(index);
    mode = previous;
}

void ngl_set_color_based_on_win_color(int index) {
    ngl_set_color(index);
}

int ngl_get_color() {
    return nglRecord().colorIndex;
}

void NglResetLastColor() {
    nglRecord().colorIndex = -1;
}

NgColorLong NglGetColorGivenIndex(int index) {
    if (index == kSelectionIndex || index == kHighlightIndex)
        return colorOfIndex({}, index);
    // Deliberate: index 0 yields 0, which hosts take for "no colour", even when the palette begins with
    // black.
    const _NglInfoStr& info = nglRecord().live;
    return index >= 1 && index < info.colorCount && info.palette ? info.palette[index] : 0;
}

int NglGetIndexGivenColor(NgColorLong color) {
    const _NglInfoStr& info = nglRecord().live;
    for (int i = 0; info.palette && i < info.colorCount; ++i)
        if (info.palette[i] == color)
            return i;
    return -1;
}

NgColorLong* NglGetColors() {
    return colors().ownTable.data();
}

void NglSetColorScheme(int scheme) {
    ColorState& state = colors();
    if (scheme == state.scheme)
        return;
    state.scheme = scheme;
    state.forceComplement = true;
    if (scheme < 0 || scheme >= kSchemeCount || NglMaxColor < 1)
        return;
    const ColorTable table = schemeTable(scheme);
    std::copy_n(table.begin(), std::min(NglMaxColor, kTableSize), state.ownTable.begin());
}

void NglUpdateColor(int count, const NgColorLong* palette) {
    nglRecord().live.colorCount = count;
    nglRecord().live.palette = palette;
    computeComplement(count, palette);
}

void NglUpdateComplementColor(int count, const NgColorLong* palette) {
    colors().complement = {palette, count};
}

void NglSetForceComplement() {
    colors().forceComplement = true;
}

void NglBeginNoComplementMode() {
    nglRecord().live.noComplement = 1;
}

void NglEndNoComplementMode() {
    nglRecord().live.noComplement = 0;
}

int ngl_get_rgb(int index, unsigned char& red, unsigned char& green, unsigned char& blue) {
    ngl_get_rgb_from_color_long(complementColor(index), red, green, blue);
    return 0;
}

int ngl_get_rgb_floats(int index, float& red, float& green, float& blue) {
    ngl_get_floats_from_color_long(complementColor(index), red, green, blue);
    return 0;
}

// --- special colours and background ------------------------------------------------------------------------

NgColorLong NglSetHighlightColor(NgColorLong color) {
    return std::exchange(colors().highlight, color);
}

void NglSetSelectionColor(NgColorLong color) {
    colors().selection = color;
}

NgColorLong NglSetWindowBackGroundColor(NgColorLong color) {
    return std::exchange(nglRecord().live.backgroundColor, color);
}

NgColorLong NglGetWindowBackGroundColor() {
    return nglRecord().live.backgroundColor;
}

int NglIsWinBGBlackish() {
    return !nglRecord().live.palette || !isLightBackground();
}

NgColorLong NglGetColorBasedOnWinColor(NgColorLong color) {
    return isLightBackground() ? inverted(color) : color;
}

void NglUpdateHiddenColor() {
    const _NglInfoStr& info = nglRecord().live;
    const bool visible = info.palette && isLightBackground();
    colors().hiddenIndex = visible ? kWhiteIndex : 0;
    colors().hiddenColor = visible && info.colorCount > kWhiteIndex ? info.palette[kWhiteIndex] : 0;
}

int NglGetHiddenColor() {
    return colors().hiddenIndex;
}

NgColorLong NglGetHiddenColorRGB() {
    return colors().hiddenColor;
}

void NglSetShadedWFColor1(int index) {
    colors().shadedWireframe1 = index;
}

int NglGetShadedWFColor1() {
    return colors().shadedWireframe1;
}

int NglGetShadedWFColor2() {
    return colors().shadedWireframe2;
}

// --- packed colours ----------------------------------------------------------------------------------------

void ngl_set_color_long(NgColorLong color) {
    issueBytes(color);
}

void ngl_set_color_rgb(NgColorLong color) {
    issueBytes(ngl_add_transparency_into_rgb_color(color));
}

NgColorLong ngl_get_color_long() {
    return nglRecord().colorLong;
}

NgColorLong ngl_get_color_long_from_rgb(unsigned char red, unsigned char green, unsigned char blue) {
    return VbNglGetColorFromRGB(red, green, blue);
}

void ngl_get_rgb_from_color_long(NgColorLong color, unsigned char& red, unsigned char& green,
                                 unsigned char& blue) {
    red = static_cast<unsigned char>(byteOf(color, 0));
    green = static_cast<unsigned char>(byteOf(color, 1));
    blue = static_cast<unsigned char>(byteOf(color, 2));
}

void ngl_get_floats_from_color_long(NgColorLong color, float& red, float& green, float& blue) {
    red = unit(byteOf(color, 0));
    green = unit(byteOf(color, 1));
    blue = unit(byteOf(color, 2));
}

NgColorLong ngl_add_transparency_into_rgb_color(NgColorLong color) {
    return (color & ~kAlphaMask) | (colors().blending & kAlphaMask);
}

void ngl_set_blending_value(int alpha) {
    colors().blending = static_cast<NgColorLong>(alpha) << 24;
}

int ngl_get_blending_value() {
    // Deliberate: the whole word, not the alpha that was set; hosts pass it on as a packed colour's top byte.
    return static_cast<int>(colors().blending);
}

NgColorLong VbNglGetColorFromRGB(int red, int green, int blue) {
    // Values above 255 spill into the higher bytes, as scripts of hosts have always seen it.
    return (static_cast<NgColorLong>(blue) << 16) | (static_cast<NgColorLong>(green) << 8) |
           static_cast<NgColorLong>(red) | kAlphaMask;
}

void VbNglGetRGBAFromColor(NgColorLong color, int* red, int* green, int* blue, int* alpha) {
    *red = byteOf(color, 0);
    *green = byteOf(color, 1);
    *blue = byteOf(color, 2);
    *alpha = byteOf(color, 3);
}
