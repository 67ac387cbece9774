// FreeType rasters each glyph once; hinted advances are whole pixels, so that every glyph is as crisp as the
// first.
#include "viewer/labels/font.h"

#include <ft2build.h>
#include FT_FREETYPE_H

#include <algorithm>

#include "viewer/error.h"

namespace nruview {

namespace {

constexpr int kFixedPoint = 64; ///< FreeType's units of a pixel

FT_Library openLibrary() {
    FT_Library library = nullptr;
    return FT_Init_FreeType(&library) == 0 ? library : nullptr;
}

FT_Face openFace(FT_Library library, const std::string& path, int size_px) {
    FT_Face face = nullptr;
    if (library == nullptr || FT_New_Face(library, path.c_str(), 0, &face) != 0)
        throw ViewerError("font " + path, "cannot be read");
    if (FT_Set_Pixel_Sizes(face, 0, static_cast<FT_UInt>(size_px)) != 0) {
        FT_Done_Face(face);
        throw ViewerError("font " + path, "has no size of " + std::to_string(size_px) + " pixels");
    }
    return face;
}

/// FreeType's rows may be wider than the picture.
TextRaster rasterOf(const FT_GlyphSlot slot) {
    const FT_Bitmap& bitmap = slot->bitmap;
    TextRaster raster{slot->bitmap_left,
                      slot->bitmap_top,
                      static_cast<int>(bitmap.width),
                      static_cast<int>(bitmap.rows),
                      {}};
    for (unsigned int row = 0; row < bitmap.rows; ++row) {
        const unsigned char* pixels = bitmap.buffer + static_cast<std::ptrdiff_t>(row) * bitmap.pitch;
        raster.coverage.insert(raster.coverage.end(), pixels, pixels + bitmap.width);
    }
    return raster;
}

/// Adds a glyph to a text; where they overlap the denser one counts.
void addTo(TextRaster& text, const TextRaster& glyph, int x) {
    for (int row = 0; row < glyph.height; ++row)
        for (int column = 0; column < glyph.width; ++column) {
            const int toRow = text.top - glyph.top + row, toColumn = x + glyph.left - text.left + column;
            unsigned char& pixel = text.coverage[static_cast<std::size_t>(toRow) * text.width + toColumn];
            pixel = std::max(pixel, glyph.coverage[static_cast<std::size_t>(row) * glyph.width + column]);
        }
}

} // namespace

Font::Font(const std::string& path, int size_px)
    : m_library(openLibrary(), FT_Done_FreeType),
      m_face(openFace(m_library.get(), path, size_px), FT_Done_Face) {}

Font::~Font() = default;

const Font::Glyph& Font::glyph(wchar_t character) {
    const auto [found, isNew] = m_glyphs.try_emplace(character);
    Glyph& glyph = found->second;
    if (!isNew)
        return glyph;
    glyph.index = FT_Get_Char_Index(m_face.get(), static_cast<FT_ULong>(character));
    if (FT_Load_Glyph(m_face.get(), glyph.index, FT_LOAD_RENDER | FT_LOAD_FORCE_AUTOHINT) != 0)
        return glyph; // a damaged glyph shows nothing
    const FT_GlyphSlot slot = m_face->glyph;
    glyph.advance = static_cast<int>((slot->advance.x + kFixedPoint / 2) / kFixedPoint);
    if (slot->bitmap.pixel_mode == FT_PIXEL_MODE_GRAY)
        glyph.raster = rasterOf(slot);
    return glyph;
}

int Font::kerning(const Glyph& left, const Glyph& right) const {
    FT_Vector offset{};
    FT_Get_Kerning(m_face.get(), left.index, right.index, FT_KERNING_DEFAULT, &offset);
    return static_cast<int>(offset.x / kFixedPoint);
}

/// Calls visit(raster, x) for every glyph; returns where the pen ends.
template <typename Visit>
int Font::layOut(std::wstring_view text, Visit visit) {
    int pen = 0;
    const Glyph* previous = nullptr;
    for (const wchar_t character : text) {
        const Glyph& current = glyph(character); // references into the map stay good
        pen += previous != nullptr ? kerning(*previous, current) : 0;
        visit(current.raster, pen);
        pen += current.advance;
        previous = &current;
    }
    return pen;
}

TextExtent Font::extent(std::wstring_view text) {
    TextExtent extent;
    extent.width = layOut(text, [&](const TextRaster& glyph, int) {
        extent.ascent = std::max(extent.ascent, glyph.top);
        extent.descent = std::max(extent.descent, glyph.height - glyph.top);
    });
    return extent;
}

TextRaster Font::raster(std::wstring_view text) {
    TextRaster raster;
    int right = 0, bottom = 0;
    layOut(text, [&](const TextRaster& glyph, int x) {
        raster.left = std::min(raster.left, x + glyph.left);
        raster.top = std::max(raster.top, glyph.top);
        right = std::max(right, x + glyph.left + glyph.width);
        bottom = std::max(bottom, glyph.height - glyph.top);
    });
    raster.width = right - raster.left;
    raster.height = raster.top + bottom;
    raster.coverage.resize(static_cast<std::size_t>(raster.width) * raster.height);
    layOut(text, [&](const TextRaster& glyph, int x) { addTo(raster, glyph, x); });
    return raster;
}

int Font::lineHeight_px() const {
    return static_cast<int>(m_face->size->metrics.height / kFixedPoint);
}

} // namespace nruview
