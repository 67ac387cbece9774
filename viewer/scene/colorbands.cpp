// Bands are exact in the picture: one texel each, without filtering. Smeared colours are a fine table.
#include "viewer/scene/colorbands.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace nruview {

namespace {

constexpr int kSmearedTexels = 1024;

/// Support colours of the ramp: the rainbow that engineers read, with lightness rising to the yellow and
/// falling to the red, so that neighbouring bands stay apart for the colour-blind too.
constexpr std::array<std::array<double, 3>, 9> kRamp = {{{38, 42, 158},
                                                         {36, 98, 222},
                                                         {38, 164, 232},
                                                         {56, 208, 190},
                                                         {96, 206, 92},
                                                         {196, 222, 54},
                                                         {250, 190, 40},
                                                         {240, 108, 32},
                                                         {190, 22, 30}}};

NgColorLong rampColor(double t) {
    const double position = t * (kRamp.size() - 1);
    const std::size_t below = std::min<std::size_t>(static_cast<std::size_t>(position), kRamp.size() - 2);
    const double part = position - static_cast<double>(below);
    std::array<unsigned char, 3> rgb;
    for (int k = 0; k < 3; ++k)
        rgb[k] = static_cast<unsigned char>(
            std::lround(kRamp[below][k] + part * (kRamp[below + 1][k] - kRamp[below][k])));
    return ngl_get_color_long_from_rgb(rgb[0], rgb[1], rgb[2]);
}

} // namespace

ColorBands::ColorBands(int count, const std::array<double, 2>& range, bool smeared)
    : m_count(count), m_range(range) {
    std::vector<float> limits;
    std::vector<unsigned int> colors;
    for (int i = 0; i <= count; ++i)
        limits.push_back(static_cast<float>(i) / static_cast<float>(count));
    for (int i = 0; i < count; ++i)
        colors.push_back(rampColor(count > 1 ? static_cast<double>(i) / (count - 1) : 0.5));
    m_attributes.minValue = 0.0f;
    m_attributes.maxValue = 1.0f;
    m_attributes.smeared = smeared ? 1 : 0;
    m_attributes.UpdateColorScale(count, limits.data(), colors.data());
}

float ColorBands::coordinate(double value) const {
    const double size = m_range[1] - m_range[0];
    if (!(size > 0.0))
        return 0.5f;
    return static_cast<float>(std::clamp((value - m_range[0]) / size, -1e6, 1e6));
}

double ColorBands::limit(int i) const {
    const double part = static_cast<double>(i) / m_count;
    return (1.0 - part) * m_range[0] + part * m_range[1];
}

NgColorLong ColorBands::color(int band) const {
    return m_attributes.colorScale.GetColorBands()[band].color;
}

void ColorBands::createTexture(unsigned int target) {
    const int texels = m_attributes.smeared != 0 ? kSmearedTexels : m_count;
    std::vector<NgColorLong> colors;
    for (int i = 0; i < texels; ++i)
        colors.push_back(
            m_attributes.colorScale.GetColor((static_cast<float>(i) + 0.5f) / static_cast<float>(texels)));
    glGenTextures(1, &m_attributes.texture);
    glBindTexture(target, m_attributes.texture);
    if (target == GL_TEXTURE_1D)
        glTexImage1D(target, 0, GL_RGBA8, texels, 0, GL_RGBA, GL_UNSIGNED_BYTE, colors.data());
    else
        glTexImage2D(target, 0, GL_RGBA8, texels, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, colors.data());
    glTexParameteri(target, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(target, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    // Values outside the range take the colour of the nearer end.
    glTexParameteri(target, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(target, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glBindTexture(target, 0);
}

} // namespace nruview
