// Renderers that collect points or line segments in client memory and draw them with one call.
#pragma once

#include <cstddef>
#include <cstdint>

#include "NRenderUtl/gl/batchprogram.h"
#include "NRenderUtl/gl/ngl.h"

enum NglBatchMode { NglBatchPoints = 1, NglBatchLines = 2, NglBatchScreenLines = 3 };

/// Option of a batch that takes texture coordinates; every other one takes colours.
inline constexpr int kBatchTextured = 2;

/// A vertex as batches take it. Its texture coordinate counts in a textured batch, its colour in others.
struct BatchVertex {
    _NgFPoint3Str position;
    NgColorLong color;
    float s = 0.0f, t = 0.0f;
};

/// What is common to both kinds. Fields and virtual functions keep their order.
class CNglBatchRender {
public:
    /// The first one of a process builds the program and reads the contour's setting.
    CNglBatchRender();
    virtual ~CNglBatchRender();
    CNglBatchRender(const CNglBatchRender&) = delete;
    CNglBatchRender& operator=(const CNglBatchRender&) = delete;

    /// Collects from now on. Without memory for the arrays, which stay afterwards, adds are ignored.
    virtual void begin(std::int32_t option) = 0;
    /// Draws what was collected.
    virtual void flush() = 0;
    /// Flushes and stops collecting; returns 0.
    virtual int end() = 0;

    bool isActive() const { return m_active != 0; }

protected:
    struct ArrayBytes {
        std::size_t positions, texCoords, colors;
    };
    void start(std::int32_t option);
    int stop();
    /// Makes the arrays; whether they are there, which is all of them or none.
    bool allocate(const ArrayBytes& bytes);
    void freeArrays();
    bool isTextured() const { return m_option == kBatchTextured; }
    void write(std::size_t index, const BatchVertex& vertex);
    BatchVertices vertices() const;

    std::uint32_t m_count = 0; ///< vertices since the last flush
    float* m_positions = nullptr;
    float* m_texCoords = nullptr;
    std::uint32_t* m_colors = nullptr;
    std::int32_t m_option = 0;
    std::int32_t m_active = 0;
};

class CNglBatchPointRender : public CNglBatchRender {
public:
    static constexpr std::uint32_t kCapacity = 400000;

    void begin(std::int32_t option) override;
    void flush() override;
    int end() override;
    /// Flushes first when the batch is full or its points have another size.
    void add(const BatchVertex& point, float size);
    float pointSize() const { return m_pointSize; }

private:
    float m_pointSize = 3.0f;
};

class CNglBatchLineRender : public CNglBatchRender {
public:
    enum Space : std::int32_t { Model = 1, Screen = 2 };
    static constexpr std::uint32_t kCapacity = 300000;

    explicit CNglBatchLineRender(Space space) : m_space(space) {}
    ~CNglBatchLineRender() override;

    void begin(std::int32_t option) override;
    void flush() override;
    int end() override;
    void setSpace(Space space) { m_space = space; }
    /// Flushes first when the batch is full or its lines have another style or width.
    void add(const BatchVertex& p, const BatchVertex& q, std::int32_t style, std::int32_t width);

private:
    std::int32_t m_space;
    std::int32_t m_style = 0;
    std::int32_t m_width = 0;
    std::uint32_t* m_indices = nullptr;
};

// Adding, which hosts do by the million, is inline and flushes out of line.

inline void CNglBatchRender::write(std::size_t index, const BatchVertex& vertex) {
    float* position = m_positions + 3 * index;
    position[0] = vertex.position.x;
    position[1] = vertex.position.y;
    position[2] = vertex.position.z;
    if (isTextured()) {
        m_texCoords[2 * index] = vertex.s;
        m_texCoords[2 * index + 1] = vertex.t;
    } else {
        m_colors[index] = vertex.color;
    }
}

/// The limits are rounded to floats as the sizes are, so that 3.1 is not the same as 3.
inline bool isSamePointSize(float size, float other) {
    return size < static_cast<float>(other + 0.1) && size > static_cast<float>(other - 0.1);
}

inline void CNglBatchPointRender::add(const BatchVertex& point, float size) {
    if (!m_positions)
        return;
    if (m_count != 0 && (m_count == kCapacity || !isSamePointSize(size, m_pointSize)))
        flush();
    const std::uint32_t i = m_count;
    write(i, point);
    m_count = i + 1;
    m_pointSize = size;
}

inline void CNglBatchLineRender::add(const BatchVertex& p, const BatchVertex& q, std::int32_t style,
                                     std::int32_t width) {
    if (!m_positions)
        return;
    if (m_count != 0 && (m_count == kCapacity || style != m_style || width != m_width))
        flush();
    const std::uint32_t i = m_count;
    m_indices[i] = i;
    m_indices[i + 1] = i + 1;
    write(i, p);
    write(i + 1, q);
    m_count = i + 2;
    m_style = style;
    m_width = width;
}

/// The renderer of a mode while it is active, else null. They are made by the first NglBatchBegin.
CNglBatchPointRender* nglActivePointBatch();
CNglBatchLineRender* nglActiveLineBatch(bool screen);
