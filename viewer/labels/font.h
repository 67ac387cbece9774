// A font file at one size: rasters and extents of texts, in whole pixels.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

struct FT_LibraryRec_;
struct FT_FaceRec_;

namespace nruview {

/// Coverage of a text's pixels, 0 to 255, rows from the top. Its place is told from the text's point, the
/// left end of the base line: columns to the right and rows above.
struct TextRaster {
    int left = 0, top = 0;
    int width = 0, height = 0;
    std::vector<unsigned char> coverage;
};

/// How far a text takes the pen to the right, and its ink above and below the base line.
struct TextExtent {
    int width = 0, ascent = 0, descent = 0;
};

class Font {
public:
    /// Throws ViewerError naming a file that is not there or no font.
    Font(const std::string& path, int size_px);
    ~Font();
    Font(const Font&) = delete;
    Font& operator=(const Font&) = delete;

    /// Characters that the font does not have show its box for them.
    TextExtent extent(std::wstring_view text);
    TextRaster raster(std::wstring_view text);
    /// From one base line to the next.
    int lineHeight_px() const;

private:
    struct Glyph {
        unsigned int index = 0;
        int advance = 0;
        TextRaster raster;
    };
    const Glyph& glyph(wchar_t character);
    int kerning(const Glyph& left, const Glyph& right) const;
    template <typename Visit>
    int layOut(std::wstring_view text, Visit visit);

    std::unique_ptr<FT_LibraryRec_, int (*)(FT_LibraryRec_*)> m_library;
    std::unique_ptr<FT_FaceRec_, int (*)(FT_FaceRec_*)> m_face;
    std::unordered_map<wchar_t, Glyph> m_glyphs;
};

} // namespace nruview
