// A snapshot of the OpenGL state of a compatibility context.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace nruview {

/// One value of the state: the name by which OpenGL is asked for it, and the texture unit, light, plane or
/// attribute that it belongs to, 0 for what there is once.
struct GlStateKey {
    std::string_view group;
    std::uint32_t name;
    std::uint32_t index = 0;
    auto operator<=>(const GlStateKey&) const = default;
};

/// A value that two snapshots do not share.
struct GlStateChange {
    GlStateKey key;
    int component; ///< the first that differs
    double before, after;
    /// Such as "binding 0x84E0: 33984 became 33985".
    std::string text() const;
};

/// Enables, masks, operations, lights and materials, current values, programs, buffers, textures and samplers
/// of all units, arrays, attributes, matrices and their stacks, pixel store and transfer. Nothing changes by
/// being read.
class GlState {
public:
    static GlState take();
    std::vector<GlStateChange> changesTo(const GlState& after) const;

private:
    using Values = std::array<double, 16>; ///< zeros stand behind a query's own
    void readValues();
    void readUnits();
    void readClientUnits();
    void readArrays();
    void readAttributes();
    void readLights();
    void readPlanes();
    Values& at(std::string_view group, std::uint32_t name, std::uint32_t index = 0) {
        return m_values[{group, name, index}];
    }
    std::map<GlStateKey, Values> m_values;
};

} // namespace nruview
