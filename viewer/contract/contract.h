// The contract with the host's OpenGL, checked: each family drawn under each state of a host.
#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "viewer/bodies/environment.h"
#include "viewer/contract/families.h"
#include "viewer/contract/frames.h"
#include "viewer/contract/hoststates.h"

namespace nruview {

enum class Outcome {
    Same,     ///< the picture is the one without the state
    Taken,    ///< it is another, as the table of what is taken says
    Fault,    ///< it is another, or something of the state is left changed
    NotThere, ///< the driver lacks the state or the family
};

struct Cell {
    Outcome outcome = Outcome::NotThere;
    std::string fault; ///< in words
};

/// Checks families in the context that is current, with the library started in it.
class Contract {
public:
    /// Throws std::logic_error for a state that does not go without trace.
    Contract();

    /// A cell for each state, in the order of the table. A family that draws nothing is a fault too.
    std::vector<Cell> check(const Family& family);

private:
    using Draw = std::function<void()>;
    struct Drawn {
        Picture picture;
        std::string fault;
    };
    void checkStates();
    Drawn draw(const Family& family, const HostState& state, Target target, const Draw& draw);
    Cell checkPair(const Family& family, const HostState& state, const Draw& kept);

    Environment m_environment;
    Frames m_frames;
    HostObjects m_objects;
    ContourTexture m_contour;
    std::array<Picture, kTargetCount> m_empty;
    std::array<std::optional<Picture>, kTargetCount> m_clean; ///< of the family under check
};

} // namespace nruview
