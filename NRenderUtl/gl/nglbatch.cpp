// Batches of points and lines as hosts drive them: begin, add, end.
#include "NRenderUtl/gl/NglBatchRender.h"

#include "NRenderUtl/gl/nglline.h"
#include "NRenderUtl/gl/nglrecord.h"

namespace {

/// Made by the first begin of their modes and kept for the life of the process, as hosts end batches late.
struct Batches {
    CNglBatchPointRender* points = nullptr;
    CNglBatchLineRender* lines = nullptr;
    CNglBatchLineRender* screenLines = nullptr;
};

Batches& batches() {
    static Batches instances;
    return instances;
}

CNglBatchPointRender* makePoints() {
    CNglBatchPointRender*& points = batches().points;
    return points ? points : points = new CNglBatchPointRender;
}

CNglBatchLineRender* makeLines(CNglBatchLineRender*& lines, CNglBatchLineRender::Space space) {
    if (!lines)
        lines = new CNglBatchLineRender(space);
    lines->setSpace(space);
    return lines;
}

CNglBatchRender* makeBatch(int mode) {
    switch (mode) {
    case NglBatchPoints:
        return makePoints();
    case NglBatchLines:
        return makeLines(batches().lines, CNglBatchLineRender::Model);
    case NglBatchScreenLines:
        return makeLines(batches().screenLines, CNglBatchLineRender::Screen);
    default:
        return nullptr;
    }
}

CNglBatchRender* findBatch(int mode) {
    switch (mode) {
    case NglBatchPoints:
        return batches().points;
    case NglBatchLines:
        return batches().lines;
    case NglBatchScreenLines:
        return batches().screenLines;
    default:
        return nullptr;
    }
}

template <class Batch>
Batch* ifActive(Batch* batch) {
    return batch && batch->isActive() ? batch : nullptr;
}

_NgFPoint3Str narrowed(const _NgPoint3Str& p) {
    return {static_cast<float>(p.x), static_cast<float>(p.y), static_cast<float>(p.z)};
}

_NgFPoint3Str narrowed(const _NgFPoint3Str& p) {
    return p;
}

template <class Point>
void addPoints(CNglBatchPointRender& batch, int count, const Point* points, float size) {
    const NgColorLong color = ngl_get_color_long();
    for (int i = 0; i < count; ++i)
        batch.add({narrowed(points[i]), color}, size);
}

template <class Point>
void addLine(CNglBatchLineRender& batch, const Point& p, const Point& q) {
    const NgColorLong color = nglRecord().colorLong;
    const NglLineState& line = nglLineState();
    batch.add({narrowed(p), color}, {narrowed(q), color}, line.style, line.width);
}

} // namespace

CNglBatchPointRender* nglActivePointBatch() {
    return ifActive(batches().points);
}

CNglBatchLineRender* nglActiveLineBatch(bool screen) {
    return ifActive(screen ? batches().screenLines : batches().lines);
}

void NglBatchBegin(int mode, int option) {
    if (CNglBatchRender* batch = makeBatch(mode))
        batch->begin(option);
}

void NglBatchEnd(int mode) {
    if (CNglBatchRender* batch = findBatch(mode))
        batch->end();
}

NglBeginEndBatchDraw::NglBeginEndBatchDraw(bool lines, bool points, bool screenLines)
    : m_lines(lines), m_points(points), m_screenLines(screenLines) {}

NglBeginEndBatchDraw::~NglBeginEndBatchDraw() {
    if (m_lines)
        NglBatchEnd(NglBatchLines);
    if (m_points)
        NglBatchEnd(NglBatchPoints);
    if (m_screenLines)
        NglBatchEnd(NglBatchScreenLines);
}

void ngl_batch_point_3d_given_size(int count, const _NgPoint3Str* points, float size) {
    if (count <= 0 || !points)
        return;
    if (CNglBatchPointRender* batch = nglActivePointBatch())
        addPoints(*batch, count, points, size);
    else
        ngl_point_3d_given_size(count, points, size);
}

void ngl_batch_point_3f_given_size(int count, const _NgFPoint3Str* points, float size) {
    if (count <= 0 || !points)
        return;
    if (CNglBatchPointRender* batch = nglActivePointBatch())
        addPoints(*batch, count, points, size);
    else
        ngl_point_3f_given_size(count, points, size);
}

void ngl_batch_line_3d_s(const _NgPoint3Str* p, const _NgPoint3Str* q, int screen) {
    if (!p || !q)
        return;
    if (CNglBatchLineRender* batch = nglActiveLineBatch(screen != 0))
        addLine(*batch, *p, *q);
    else
        ngl_line_3d_s(p, q);
}

void ngl_batch_line_3f_s(const _NgFPoint3Str* p, const _NgFPoint3Str* q) {
    if (!p || !q)
        return;
    if (CNglBatchLineRender* batch = nglActiveLineBatch(false))
        addLine(*batch, *p, *q);
    else
        ngl_line_3f_s(p, q);
}

void ngl_batch_polyline_3d_s(const _NgPoint3Str* points, std::uint64_t count, int screen) {
    if (!points)
        return;
    CNglBatchLineRender* batch = nglActiveLineBatch(screen != 0);
    if (!batch)
        return ngl_polyline_3d_s(points, count);
    for (std::uint64_t i = 1; i < count; ++i)
        addLine(*batch, points[i - 1], points[i]);
}
