// The values of the command line's options that have a form of their own.
#pragma once

#include "viewer/scene/scenesettings.h"

namespace nruview {

// Each throws ViewerError naming the option, the text and what was expected.
std::array<double, 2> parseRange(const char* option, const std::string& text);
std::array<int, 2> parseSize(const char* option, const std::string& text);
std::array<int, 2> parsePixel(const char* option, const std::string& text);
int parseBands(const char* option, const std::string& text);
/// Packed 0xAABBGGRR, opaque.
std::uint32_t parseColor(const char* option, const std::string& text);
/// Nothing for "auto".
std::optional<double> parseDeform(const char* option, const std::string& text);
ColorBy parseColorBy(const char* option, const std::string& text);
EdgeMode parseEdges(const char* option, const std::string& text);
ImageUp parseImageUp(const char* option, const std::string& text);
Shading parseShading(const char* option, const std::string& text);
/// An angle in degrees, 0 to 180.
double parseCrease(const char* option, const std::string& text);
double parseOpacity(const char* option, const std::string& text);
/// "0-99,120,200-300"
ElementList parseElements(const char* option, const std::string& text);
/// A list, "=" and a colour.
ColoredElements parseColored(const char* option, const std::string& text);
/// "x:0,10"; either number may be missing.
ElementClip parseClip(const char* option, const std::string& text);
/// "steps" or "phase".
Motion parseMotion(const char* option, const std::string& text);
/// A number of frames, alone or with ":" and a motion.
AnimationSettings parseAnimation(const char* option, const std::string& text);
/// "x", "-y:30" or "X,Y,Z:NX,NY,NZ": an axis, which points at what is cut away, and the place on it; or a
/// point and a normal.
SectionPlane parseSection(const char* option, const std::string& text);
/// "on" or "off".
bool parseSwitch(const char* option, const std::string& text);
/// A list of nodes as of elements, else the name of a node set.
NodeChoice parseNodes(const char* option, const std::string& text);
/// Nodes, or nodes, ":" and a kind.
SupportedNodes parseSupports(const char* option, const std::string& text);
/// "3-40,7-12"
std::vector<std::array<std::uint32_t, 2>> parseConnectors(const char* option, const std::string& text);
ConnectorShape parseConnectorShape(const char* option, const std::string& text);
/// A number above 0.
double parseScale(const char* option, const std::string& text);
/// 0.5 to 4.
double parseDisplayScale(const char* option, const std::string& text);
int parseLevel(const char* option, const std::string& text);

} // namespace nruview
