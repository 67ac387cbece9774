// The host's part in the library's text: fonts by their size, measuring and drawing.
#pragma once

#include <map>
#include <memory>
#include <string>

#include "NRenderUtl/NRenderUtl.h"
#include "viewer/labels/font.h"

namespace nruview {

/// The font file: NRUVIEW_FONT in the environment, else DejaVu Sans where distributions put it.
std::string fontFile();

/// While it lives it serves the library's text functions; the one made last does. A font handle of the
/// library is what font() gives, null the default size. Texts are opaque and stand on whole pixels, the left
/// end of their base line at the point; on top of the picture or, with the first flag, at the point's depth.
/// Without a font nothing is drawn, and all sizes are 0.
class HostText {
public:
    explicit HostText(const std::string& file);
    /// Needs the context that texts were drawn in.
    ~HostText();
    HostText(const HostText&) = delete;
    HostText& operator=(const HostText&) = delete;

    /// Empty, or why there is no text.
    const std::string& problem() const { return m_problem; }
    Font* font(int size_px);

private:
    static void drawText(const _NgPoint3Str* point, const wchar_t* text, NgColorLong color, bool atDepth,
                         void* font, bool);
    static void drawLines(const _NgPoint3Str* point, const wchar_t* text, NgColorLong color, bool atDepth,
                          void* font, bool);
    static void measure(int* width, int* height, const wchar_t* text, void* font);
    static void measureRise(const wchar_t* text, int* ascent, int* descent, void* font);
    void draw(const _NgPoint3Str& point, std::wstring_view text, NgColorLong color, bool atDepth, Font& font,
              int drop_px);

    std::string m_file, m_problem;
    std::map<int, std::unique_ptr<Font>> m_fonts;
    unsigned int m_texture = 0;
};

} // namespace nruview
