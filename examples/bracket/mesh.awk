# Writes the bracket as an input file for CalculiX: a strip of steel, bent to an L and welded to a beam along its upper
# end, with a hole at which a washer presses down.
#   awk -f mesh.awk >bracket.inp
# The strip is meshed flat, in s along it, w across it and n through its thickness, and bent in place(). Lengths in mm,
# forces in N, masses in t: stresses come out in MPa, frequencies in Hz.
BEGIN {
  pi = atan2(0, -1)
  width = 40; thickness = 8; innerRadius = 6     # of the bend
  leg = 60; arm = 20; tail = 10                  # straight lengths before the bend, before and behind the hole's square
  hole = 6; washer = 12; force = 1000            # radii, load
  across = 12; layers = 3                        # elements over the width and the thickness
  meanRadius = innerRadius + thickness / 2
  bend = meanRadius * pi / 2
  centre = leg + bend + arm + width / 2          # of the hole

  print "*HEADING"
  print "Steel bracket with a hole, lengths in mm, forces in N"
  printf "** beam theory: the hole goes down by %.4f mm\n", deflection()
  plain(0, leg, 18)
  plain(leg, leg + bend, 8)
  plain(leg + bend, leg + bend + arm, 6)
  ring(2, 4)
  plain(centre + width / 2, centre + width / 2 + tail, 3)
  write()
}

# Of a bent beam under a force at the hole, by the work of the bending moment (Castigliano) along the leg, the bend and
# the arm, with the leg's stretching and the arm's shear.
function deflection(   young, area, stiffness, lever, straight, leverWork) {
  young = 210000
  area = width * thickness
  stiffness = young * area * thickness ^ 2 / 12
  straight = arm + width / 2
  lever = straight + meanRadius
  leverWork = lever ^ 2 * leg + straight ^ 3 / 3 + \
    meanRadius * (straight ^ 2 * pi / 2 + 2 * straight * meanRadius + meanRadius ^ 2 * pi / 4)
  return force * (leverWork / stiffness + leg / (young * area) + 1.2 * straight / (young / 2.6 * area))
}

# --- blocks ---

# From s0 to s1 over the whole width.
function plain(s0, s1, count,   i, j) {
  split("", at)
  for (i = 0; i <= 2 * across; ++i)
    for (j = 0; j <= 2 * count; ++j)
      at[i, j] = (s0 + (s1 - s0) * j / (2 * count)) " " width * (i / (2 * across) - 0.5)
  block(across, count, "")
}

# The square about the hole: rings of elements round it, the inner ones below the washer.
function ring(inner, outer,   around, i, j, angle, side, along, s, w, share) {
  split("", at)
  around = 4 * across
  for (i = 0; i <= 2 * around; ++i) {
    angle = 2 * pi * i / (2 * around) - 3 * pi / 4
    side = int(i / (2 * across)) % 4
    along = width * ((i % (2 * across)) / (2 * across) - 0.5)
    s = side == 0 ? along : side == 1 ? width / 2 : side == 2 ? -along : -width / 2
    w = side == 0 ? -width / 2 : side == 1 ? along : side == 2 ? width / 2 : -along
    for (j = 0; j <= 2 * inner; ++j)
      at[i, j] = polar(hole + (washer - hole) * j / (2 * inner), angle)
    for (j = 1; j <= 2 * outer; ++j) {
      share = j / (2 * outer)
      at[i, 2 * inner + j] = (centre + (1 - share) * washer * cos(angle) + share * s) " " \
                             ((1 - share) * washer * sin(angle) + share * w)
    }
  }
  block(around, inner, "WASHER")
  split("", moved)
  for (i = 0; i <= 2 * around; ++i)
    for (j = 0; j <= 2 * outer; ++j)
      moved[i, j] = at[i, 2 * inner + j]
  split("", at)
  for (i in moved)
    at[i] = moved[i]
  block(around, outer, "")
}

function polar(radius, angle) {
  return (centre + radius * cos(angle)) " " radius * sin(angle)
}

# --- elements ---

# Hexahedra of 20 nodes over at[], whose even places are corners; those of the uppermost layer go into a set.
function block(columns, rows, set,   i, j, k) {
  for (k = 0; k < layers; ++k)
    for (j = 0; j < rows; ++j)
      for (i = 0; i < columns; ++i)
        element(2 * i, 2 * j, 2 * k, k == layers - 1 ? set : "")
}

# Corners and mid-sides in the solver's order, as steps from the first corner.
function element(i, j, k, set,   steps, n, step) {
  n = split("000 200 220 020 002 202 222 022 100 210 120 010 102 212 122 012 001 201 221 021", steps, " ")
  elements[++elementCount] = ""
  for (step = 1; step <= n; ++step)
    elements[elementCount] = elements[elementCount] ", " (step == 11 ? "\n" : "") \
      node(i + substr(steps[step], 1, 1), j + substr(steps[step], 2, 1), k + substr(steps[step], 3, 1))
  if (set != "")
    loaded = loaded elementCount "\n"
}

# The number of a node; neighbours share it by its place.
function node(i, j, k,   flat, place, key) {
  split(at[i, j], flat, " ")
  key = sprintf("%.3f %.3f %d", flat[1], flat[2], k)
  sub(/-0\.000/, "0.000", key)
  if (!(key in numbers)) {
    numbers[key] = ++nodeCount
    nodes[nodeCount] = bent(flat[1], flat[2], thickness * k / (2 * layers))
    if (flat[1] < 1e-6)
      fixed = fixed nodeCount "\n"
    if (sqrt((flat[1] - centre) ^ 2 + flat[2] ^ 2) < hole + 1e-6)
      eye = eye nodeCount "\n"
  }
  return numbers[key]
}

# Down the leg, round the bend and out along the arm; n counts from the outer side.
function bent(s, w, n,   outerRadius, angle) {
  outerRadius = innerRadius + thickness
  if (s < leg)
    return sprintf("%.6f, %.6f, %.6f", n, outerRadius + leg - s, w)
  if (s > leg + bend)
    return sprintf("%.6f, %.6f, %.6f", outerRadius + s - leg - bend, n, w)
  angle = (s - leg) / meanRadius
  return sprintf("%.6f, %.6f, %.6f", outerRadius - (outerRadius - n) * cos(angle),
                 outerRadius - (outerRadius - n) * sin(angle), w)
}

# --- the file ---

function write(   i) {
  print "*NODE, NSET=ALL"
  for (i = 1; i <= nodeCount; ++i)
    print i ", " nodes[i]
  print "*ELEMENT, TYPE=C3D20R, ELSET=BRACKET"
  for (i = 1; i <= elementCount; ++i)
    print i elements[i]
  printf "*NSET, NSET=WELD\n%s*NSET, NSET=EYE\n%s*ELSET, ELSET=WASHER\n%s", fixed, eye, loaded
  print "*MATERIAL, NAME=STEEL\n*ELASTIC\n210000., 0.3\n*DENSITY\n7.85e-9"
  print "*SOLID SECTION, ELSET=BRACKET, MATERIAL=STEEL"
  print "*BOUNDARY\nWELD, 1, 3"
  print "*STEP\n*STATIC\n*DLOAD"
  printf "WASHER, P2, %.8f\n", force / (pi * (washer ^ 2 - hole ^ 2))
  print "*NODE FILE\nU, RF\n*EL FILE\nS\n*NODE PRINT, NSET=EYE\nU\n*NODE PRINT, NSET=WELD, TOTALS=ONLY\nRF\n*END STEP"
  print "*STEP\n*FREQUENCY\n6\n*NODE FILE\nU\n*NODE PRINT, NSET=EYE, FREQUENCY=0\n*END STEP"
}
