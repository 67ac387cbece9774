// Symbols inside the library: their state and the walk over a symbol's parts that drawing and picking share.
#pragma once

#include "NRenderUtl/markers/nmarkers.h"

/// Offset registers, which the data of one symbol may leave to the next.
struct SymbolRegisters {
    _NgPoint3Str* values = nullptr; ///< host allocator; grown when a register is stored, never freed
    int capacity = 0;
    int highest = -1; ///< highest index stored
};

struct SymbolState {
    utl_symbols* list = nullptr;
    std::uint16_t count = 0;
    double matrix[4][4] = {};
    bool initialised = false;
    float orthoScale = 1.0f;
    std::int32_t snapPixels = 3;
    std::int32_t springDrawMode = 0;
    SymbolRegisters registers;
};

SymbolState& symbolState();

/// Pushes the 3D matrix for the length of a block. The record's model-view follows what is multiplied in the
/// block, also where it does not follow other matrix operations: picking projects by it.
class SymbolFrame {
public:
    SymbolFrame();
    ~SymbolFrame();
    SymbolFrame(const SymbolFrame&) = delete;
    SymbolFrame& operator=(const SymbolFrame&) = delete;

    void nullifyView();
    void translate(const _NgPoint3Str& offset);
    void scale(double factor);
    /// Axis 'x', 'y' or 'z'; any other turns nothing.
    void rotate(double angleDeg, int axis);

private:
    void multiply(double matrix[4][4]);
    double m_outer[4][4];
};

/// What is done with the primitives of a symbol, in the frame of their part. True ends the walk: a hit.
class SymbolTarget {
public:
    virtual ~SymbolTarget() = default;
    virtual bool isDrawing() const = 0;
    virtual bool line(const _NgPoint3Str& p, const _NgPoint3Str& q) = 0;
    virtual bool polyline(const _NgPoint3Str* points, int count) = 0;
    virtual bool polygon(const _NgPoint3Str* points, int count) = 0;
};

class SymbolDrawer final : public SymbolTarget {
public:
    bool isDrawing() const override { return true; }
    bool line(const _NgPoint3Str& p, const _NgPoint3Str& q) override;
    bool polyline(const _NgPoint3Str* points, int count) override;
    bool polygon(const _NgPoint3Str* points, int count) override;
};

/// Tests segments against a screen pixel, y downward.
class SymbolPicker final : public SymbolTarget {
public:
    SymbolPicker(int x, int y) : m_x(x), m_y(y) {}
    bool isDrawing() const override { return false; }
    bool line(const _NgPoint3Str& p, const _NgPoint3Str& q) override;
    bool polyline(const _NgPoint3Str* points, int count) override;
    bool polygon(const _NgPoint3Str* points, int count) override;

private:
    bool hits(const _NgPoint3Str& p, const _NgPoint3Str& q) const;
    bool hitsChain(const _NgPoint3Str* points, int segments) const;
    const int m_x, m_y;
};

/// Scales of a symbol's parts.
struct SymbolParameters {
    const double* values;
    int count;
};

/// Walks the parts at the current matrix. Returns 0 when everything was drawn or something was hit, -1 when
/// nothing was hit. A part whose parameter is missing or not finite is left out.
int walkSymbol(SymbolTarget& target, const SymbolParameters& parameters, int partCount,
               const utl_parametric_symbol_data_s* parts);
