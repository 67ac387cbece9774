// GLE's functions as a handle gives them, and a bent tube drawn by them: for the test and for its hosts.
#pragma once

#include <dlfcn.h>

#include <GL/gle.h>
#include <epoxy/gl.h>

#include "tests/support/gltest.h"

namespace nrutest {

struct Tubes {
    decltype(&glePolyCylinder) draw;
    decltype(&gleSetJoinStyle) setStyle;
    decltype(&gleGetJoinStyle) getStyle;
};

/// Null functions where the handle has none.
inline Tubes tubesOf(void* handle) {
    return {reinterpret_cast<decltype(Tubes::draw)>(dlsym(handle, "glePolyCylinder")),
            reinterpret_cast<decltype(Tubes::setStyle)>(dlsym(handle, "gleSetJoinStyle")),
            reinterpret_cast<decltype(Tubes::getStyle)>(dlsym(handle, "gleGetJoinStyle"))};
}

/// A lit tube along the path's first points, coloured or in the current colour, on 64 x 64 pixels.
inline Picture drawTube(const Tubes& tubes, int points, bool colored) {
    double path[][3] = {{-1, -.5, 0}, {-.6, -.5, 0}, {.2, -.4, .3}, {.4, .6, -.2}, {-.7, .5, 0}, {-1, .5, 0}};
    float colors[][3] = {{1, 1, 1}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 1, 0}, {1, 1, 1}};
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    for (const GLenum state : {GL_LIGHTING, GL_LIGHT0, GL_COLOR_MATERIAL, GL_DEPTH_TEST})
        glEnable(state);
    glColor3f(0.5f, 0.75f, 1);
    tubes.draw(points, path, colored ? colors : nullptr, 0.2);
    return Picture::read(64, 64);
}

} // namespace nrutest
