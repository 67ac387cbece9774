// Symbols inside the library: their state and the walk over a symbol's parts that drawing and picking share.
#pragma once

#include "NRenderUtl/gl/nglproject.h"
#include "NRenderUtl/host/hostmath.h"
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

/// Where a symbol or a part of one is: the matrix from its units to the model space of GL and of the record.
class SymbolPlace {
public:
    SymbolPlace() { NglSetIdentity(m_matrix); }
    /// The view's own space.
    static SymbolPlace ofView();
    void translate(const _NgPoint3Str& offset);
    void scale(double factor);
    /// Axis 'x', 'y' or 'z'; any other turns nothing.
    void rotate(double angleDeg, int axis);
    const NgMatrix& matrix() const { return m_matrix; }

private:
    NgMatrix m_matrix;
};

/// What is done with the primitives of a symbol, each in the units of the part entered last. True ends the
/// walk: a hit.
class SymbolTarget {
public:
    virtual ~SymbolTarget() = default;
    virtual bool isDrawing() const = 0;
    /// Model space is the record's from here on, whatever GL's is.
    virtual void useRecord() = 0;
    virtual void enter(const SymbolPlace& part) = 0;
    virtual void leave() = 0;
    virtual bool line(const _NgPoint3Str& p, const _NgPoint3Str& q) = 0;
    virtual bool polyline(const _NgPoint3Str* points, int count) = 0;
    virtual bool polygon(const _NgPoint3Str* points, int count) = 0;
};

/// Sends vertices in model space, so that GL's matrices stay and the driver joins what it draws; through
/// matrices of their own only where fixed function looks at the space of vertices.
class SymbolDrawer final : public SymbolTarget {
public:
    SymbolDrawer() = default;
    ~SymbolDrawer() override { close(); }
    SymbolDrawer(const SymbolDrawer&) = delete;
    SymbolDrawer& operator=(const SymbolDrawer&) = delete;
    bool isDrawing() const override { return true; }
    void useRecord() override;
    void enter(const SymbolPlace& part) override;
    void leave() override;
    bool line(const _NgPoint3Str& p, const _NgPoint3Str& q) override;
    bool polyline(const _NgPoint3Str* points, int count) override;
    bool polygon(const _NgPoint3Str* points, int count) override;

private:
    void readState();
    void send(const _NgPoint3Str& p) const;
    void drawChain(unsigned primitive, const _NgPoint3Str* points, int count);
    void open();
    void close();

    bool m_ready = false;    ///< GL's state has been read, which takes a context
    bool m_anySpace = false; ///< what shows does not depend on the space in which vertices are sent
    bool m_dashed = false;   ///< dashes run on along a chain
    bool m_fromRecord = false;
    bool m_open = false;                 ///< segments are being sent
    const SymbolPlace* m_part = nullptr; ///< places vertices here; else GL's matrix does
    int m_matrixMode = 0;
};

/// Tests segments against a screen pixel, y downward.
class SymbolPicker final : public SymbolTarget {
public:
    SymbolPicker(int x, int y);
    bool isDrawing() const override { return false; }
    void useRecord() override {} // always
    void enter(const SymbolPlace& part) override;
    void leave() override {}
    bool line(const _NgPoint3Str& p, const _NgPoint3Str& q) override;
    bool polyline(const _NgPoint3Str* points, int count) override;
    bool polygon(const _NgPoint3Str* points, int count) override;

private:
    bool hits(const _NgPoint3Str& p, const _NgPoint3Str& q) const;
    bool hitsChain(const _NgPoint3Str* points, int segments) const;
    const int m_x, m_y;
    NglProjection m_projection; ///< from the part's units
};

/// Scales of a symbol's parts.
struct SymbolParameters {
    const double* values;
    int count;
};

/// Walks the parts at a place. Returns 0 when everything was drawn or something was hit, -1 when
/// nothing was hit. A part whose parameter is missing or not finite is left out.
int walkSymbol(SymbolTarget& target, const SymbolPlace& place, const SymbolParameters& parameters,
               int partCount, const utl_parametric_symbol_data_s* parts);
