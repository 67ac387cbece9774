// Immediate drawing: one begin and end around vertices that are sent one by one.
#pragma once

#include <cstdint>

#include "NRenderUtl/gl/ngl.h"
#include "NRenderUtl/host/hostgl.h"

/// glBegin for the length of a block: whoever leaves it, whichever way, may set GL state again.
class BeginEnd {
public:
    explicit BeginEnd(GLenum primitive) { glBegin(primitive); }
    ~BeginEnd() { glEnd(); }
    BeginEnd(const BeginEnd&) = delete;
    BeginEnd& operator=(const BeginEnd&) = delete;
};

inline void sendVertex(const _NgPoint2Str& p) {
    glVertex2f(static_cast<GLfloat>(p.x), static_cast<GLfloat>(p.y));
}

inline void sendVertex(const _NgPoint3Str& p) {
    glVertex3f(static_cast<GLfloat>(p.x), static_cast<GLfloat>(p.y), static_cast<GLfloat>(p.z));
}

inline void sendVertex(const _NgFPoint3Str& p) {
    glVertex3f(p.x, p.y, p.z);
}

template <class Point>
void sendVertex(const Point* p) {
    sendVertex(*p);
}

/// Begin and end around vertices that have the current colour. It is sent with them: of one that is set
/// before, fixed function makes a constant of its fragments, and drivers take over all of their state for
/// each draw for which a constant changed. A display list keeps to the colour that is current at its call.
class BeginEndInColor {
public:
    explicit BeginEndInColor(GLenum primitive) {
        GLint list;
        GLfloat color[4];
        glGetIntegerv(GL_LIST_INDEX, &list);
        glGetFloatv(GL_CURRENT_COLOR, color);
        glBegin(primitive);
        if (list == 0)
            glColor4fv(color);
    }
    ~BeginEndInColor() { glEnd(); }
    BeginEndInColor(const BeginEndInColor&) = delete;
    BeginEndInColor& operator=(const BeginEndInColor&) = delete;
};

/// Calls send(i) for each vertex between one begin and end.
template <class Send>
void drawVertices(GLenum primitive, std::uint64_t count, const Send& send) {
    const BeginEnd vertices(primitive);
    for (std::uint64_t i = 0; i < count; ++i)
        send(i);
}

/// The same for an array of points or of pointers to points; nothing without array or points.
template <class Point>
void drawPoints(GLenum primitive, const Point* points, std::uint64_t count) {
    if (points && count > 0)
        drawVertices(primitive, count, [=](std::uint64_t i) { sendVertex(points[i]); });
}
