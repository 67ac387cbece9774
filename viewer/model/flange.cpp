// Profiles turned about the axis, and between them a plate of one sector for each bolt hole. Patches meet in
// the same points, so that the skin is closed.
#include "viewer/model/flange.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <numbers>

namespace nruview {

namespace {

using Index = std::uint32_t;

constexpr double kPi = std::numbers::pi;
constexpr int kBolts = 6;
constexpr double kBore = 15, kHub = 25, kHeight = 40, kThickness = 12, kRim = 60; ///< radii and heights in mm
constexpr double kPlateInner = 34, kBoltCircle = 46, kPlateOuter = 57, kBoltHole = 5.5;
constexpr double kChamfer = 1.5, kFillet = 6, kRound = 2, kBoltRound = 1;

/// Radius and height.
struct ProfilePoint {
    double r, z;
};
using Profile = std::vector<ProfilePoint>;

/// A quarter circle about a centre from one angle to another, its first point left out.
void addArc(Profile& profile, const ProfilePoint& centre, double radius, double fromDeg, double toDeg,
            Index n) {
    const Index steps = std::max<Index>(2, n / 4);
    for (Index i = 1; i <= steps; ++i) {
        const double angle = (fromDeg + (toDeg - fromDeg) * i / steps) * kPi / 180.0;
        profile.push_back({centre.r + radius * std::cos(angle), centre.z + radius * std::sin(angle)});
    }
}

// Along each profile the part lies to the right, with the axis at the left and z upward.

Profile rimProfile(Index n) {
    Profile profile{{kPlateOuter, kThickness}, {kRim - kRound, kThickness}};
    addArc(profile, {kRim - kRound, kThickness - kRound}, kRound, 90, 0, n);
    profile.push_back({kRim, kRound});
    addArc(profile, {kRim - kRound, kRound}, kRound, 0, -90, n);
    profile.push_back({kPlateOuter, 0});
    return profile;
}

Profile hubProfile(Index n) {
    Profile profile{{kPlateInner, 0}, {kBore + kChamfer, 0}, {kBore, kChamfer}};
    const Index steps = std::max<Index>(1, n / 2);
    for (Index i = 1; i <= steps; ++i)
        profile.push_back({kBore, kChamfer + (kHeight - 2 * kChamfer) * i / steps});
    profile.push_back({kBore + kChamfer, kHeight});
    profile.push_back({kHub - kRound, kHeight});
    addArc(profile, {kHub - kRound, kHeight - kRound}, kRound, 90, 0, n);
    profile.push_back({kHub, kThickness + kFillet});
    addArc(profile, {kHub + kFillet, kThickness + kFillet}, kFillet, 180, 270, n);
    profile.push_back({kPlateInner, kThickness});
    return profile;
}

Profile boltProfile(Index n) {
    Profile profile{{kBoltHole + kBoltRound, 0}};
    addArc(profile, {kBoltHole + kBoltRound, kBoltRound}, kBoltRound, 270, 180, n);
    profile.push_back({kBoltHole, kThickness - kBoltRound});
    addArc(profile, {kBoltHole + kBoltRound, kThickness - kBoltRound}, kBoltRound, 180, 90, n);
    return profile;
}

Index plateRings(Index n) {
    return std::max<Index>(2, n / 2);
}

Point polar(double r, double angle, double z) {
    return {r * std::cos(angle), r * std::sin(angle), z};
}

/// Puts patches of quads together; points closer than a nanometre are one.
class SkinBuilder {
public:
    /// rows x columns quads between the points at(row, column); along the rows, then along the columns turns
    /// to the left as seen from outside.
    void addPatch(Index rows, Index columns, const std::function<Point(Index, Index)>& at) {
        std::vector<Index> nodes;
        for (Index row = 0; row <= rows; ++row)
            for (Index column = 0; column <= columns; ++column)
                nodes.push_back(node(at(row, column)));
        const Index width = columns + 1;
        for (Index row = 0; row < rows; ++row)
            for (Index column = 0; column < columns; ++column) {
                const Index first = row * width + column;
                m_model.addCell(CellType::Quad, std::array{nodes[first], nodes[first + width],
                                                           nodes[first + width + 1], nodes[first + 1]});
            }
    }
    Model finish() { return std::move(m_model); }

private:
    Index node(const Point& point) {
        std::array<std::int64_t, 3> key;
        std::transform(point.begin(), point.end(), key.begin(),
                       [](double x) { return std::llround(x * 1e6); });
        const auto [found, isNew] = m_nodes.try_emplace(key, static_cast<Index>(m_model.nodes.size()));
        if (isNew)
            m_model.nodes.push_back({point[1], point[2], point[0]}); // the part stands along y
        return found->second;
    }

    Model m_model;
    std::map<std::array<std::int64_t, 3>, Index> m_nodes;
};

void addTurned(SkinBuilder& skin, const Profile& profile, Index n) {
    const Index around = kBolts * n;
    skin.addPatch(static_cast<Index>(profile.size()) - 1, around, [&](Index i, Index j) {
        return polar(profile[i].r, 2 * kPi * (j % around) / around, profile[i].z);
    });
}

/// The outline of a bolt hole's sector, counter-clockwise from its outer right corner.
Point outlinePoint(Index ray, Index n, double middle, double z) {
    const double t = 1.0 * (ray % n) / n, half = kPi / kBolts;
    switch (ray / n % 4) {
    case 0:
        return polar(kPlateOuter, middle + (2 * t - 1) * half, z);
    case 1:
        return polar(kPlateOuter + t * (kPlateInner - kPlateOuter), middle + half, z);
    case 2:
        return polar(kPlateInner, middle + (1 - 2 * t) * half, z);
    default:
        return polar(kPlateInner + t * (kPlateOuter - kPlateInner), middle - half, z);
    }
}

/// About a bolt hole's axis; ray 0 points at the sector's outer right corner.
Point boltPoint(double r, Index ray, Index n, double middle, double z) {
    const double angle = middle + 2 * kPi * (1.0 * (ray % (4 * n)) / (4 * n) - 0.125);
    const Point axis = polar(kBoltCircle, middle, z);
    return {axis[0] + r * std::cos(angle), axis[1] + r * std::sin(angle), z};
}

void addBoltSector(SkinBuilder& skin, int bolt, Index n) {
    const double middle = kPi / kBolts * (2 * bolt + 1);
    const Profile wall = boltProfile(n);
    const Index rings = plateRings(n), rays = 4 * n;
    const auto plate = [&](Index ring, Index ray, double z) {
        const double t = std::pow(1.0 * ring / rings, 1.3); // narrower towards the hole
        const Point hole = boltPoint(kBoltHole + kBoltRound, ray, n, middle, z);
        const Point outline = outlinePoint(ray, n, middle, z);
        return Point{hole[0] + t * (outline[0] - hole[0]), hole[1] + t * (outline[1] - hole[1]), z};
    };
    skin.addPatch(rings, rays, [&](Index i, Index j) { return plate(i, j, kThickness); });
    skin.addPatch(rings, rays, [&](Index i, Index j) { return plate(rings - i, j, 0.0); });
    skin.addPatch(static_cast<Index>(wall.size()) - 1, rays,
                  [&](Index i, Index j) { return boltPoint(wall[i].r, j, n, middle, wall[i].z); });
}

} // namespace

Model makeFlange(Index n) {
    SkinBuilder skin;
    addTurned(skin, rimProfile(n), n);
    addTurned(skin, hubProfile(n), n);
    for (int bolt = 0; bolt < kBolts; ++bolt)
        addBoltSector(skin, bolt, n);
    return skin.finish();
}

std::uint64_t flangeCells(Index n) {
    const std::uint64_t turned = rimProfile(n).size() + hubProfile(n).size() - 2;
    return kBolts * n * (turned + 4 * (2 * plateRings(n) + boltProfile(n).size() - 1));
}

} // namespace nruview
