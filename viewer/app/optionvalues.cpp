// Strict: what is left over behind a value makes it wrong.
#include "viewer/app/optionvalues.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>

#include "viewer/error.h"
#include "viewer/model/vectors.h"

namespace nruview {

namespace {

constexpr int kMaxSize = 16384;
constexpr double kInfinity = std::numeric_limits<double>::infinity();

[[noreturn]] void refuse(const char* option, const std::string& text, const char* expected) {
    throw ViewerError(option, "'" + text + "' is not " + expected);
}

/// A finite number and nothing else.
template <typename Number>
std::optional<Number> parseNumber(std::string_view text) {
    Number number{};
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end || !std::isfinite(static_cast<double>(number)))
        return {};
    return number;
}

/// What stands before and behind the first separator.
std::optional<std::array<std::string_view, 2>> split(std::string_view text, char separator) {
    const std::size_t place = text.find(separator);
    if (place == std::string_view::npos)
        return {};
    return std::array{text.substr(0, place), text.substr(place + 1)};
}

template <typename Number>
std::optional<std::array<Number, 2>> parsePair(std::string_view text, char separator) {
    const auto parts = split(text, separator);
    if (!parts)
        return {};
    const auto first = parseNumber<Number>((*parts)[0]), second = parseNumber<Number>((*parts)[1]);
    if (!first || !second)
        return {};
    return std::array{*first, *second};
}

/// "7" or "3-9".
std::optional<ElementRange> parseElementRange(std::string_view text) {
    if (const auto range = parsePair<std::uint32_t>(text, '-'))
        return (*range)[0] <= (*range)[1] ? std::optional(ElementRange{(*range)[0], (*range)[1]})
                                          : std::nullopt;
    const auto element = parseNumber<std::uint32_t>(text);
    return element ? std::optional(ElementRange{*element, *element}) : std::nullopt;
}

/// Calls take(word) for what stands between commas as long as it returns true; false once it does not.
template <typename Take>
bool forEachWord(std::string_view text, Take take) {
    while (const auto parts = split(text, ',')) {
        if (!take((*parts)[0]))
            return false;
        text = (*parts)[1];
    }
    return take(text);
}

std::optional<ElementList> parseRanges(std::string_view text) {
    ElementList list;
    const auto take = [&list](std::string_view word) {
        const auto range = parseElementRange(word);
        if (range)
            list.push_back(*range);
        return range.has_value();
    };
    return forEachWord(text, take) ? std::optional(list) : std::nullopt;
}

/// "pin" or "spring-y".
std::optional<SupportedNodes> parseSupportKind(std::string_view text) {
    const std::size_t dash = text.rfind('-');
    const auto found = std::find(kSupportKinds.begin(), kSupportKinds.end(), text.substr(0, dash));
    if (found == kSupportKinds.end())
        return {};
    const auto kind = static_cast<SupportKind>(found - kSupportKinds.begin());
    const std::string_view axis = dash != std::string_view::npos ? text.substr(dash + 1) : "";
    const std::size_t place = axis.size() == 1 ? std::string_view("xyz").find(axis) : std::string_view::npos;
    if (liesAlongAxis(kind) != (place != std::string_view::npos) ||
        (!liesAlongAxis(kind) && dash != std::string_view::npos))
        return {};
    return SupportedNodes{{}, kind, liesAlongAxis(kind) ? static_cast<int>(place) : 0};
}

/// Three numbers and nothing else.
std::optional<Point> parsePoint(std::string_view text) {
    Point point{};
    std::size_t count = 0;
    const auto take = [&](std::string_view word) {
        const auto number = parseNumber<double>(word);
        if (number && count < 3)
            point[count] = *number;
        ++count;
        return number.has_value();
    };
    return forEachWord(text, take) && count == 3 ? std::optional(point) : std::nullopt;
}

/// "x" or "-x".
std::optional<Point> parseAxis(std::string_view text) {
    const bool isNegative = text.starts_with('-');
    const std::string_view name = text.substr(isNegative ? 1 : 0);
    const std::size_t axis = name.size() == 1 ? std::string_view("xyz").find(name) : std::string_view::npos;
    if (axis == std::string_view::npos)
        return {};
    Point direction{};
    direction[axis] = isNegative ? -1.0 : 1.0;
    return direction;
}

} // namespace

std::array<double, 2> parseRange(const char* option, const std::string& text) {
    const auto range = parsePair<double>(text, ',');
    if (!range || !((*range)[0] < (*range)[1]))
        refuse(option, text, "MIN,MAX with MIN below MAX");
    return *range;
}

std::array<int, 2> parseSize(const char* option, const std::string& text) {
    const auto size = parsePair<int>(text, 'x');
    if (!size || (*size)[0] < 1 || (*size)[1] < 1 || (*size)[0] > kMaxSize || (*size)[1] > kMaxSize)
        refuse(option, text, "WxH with 1 to 16384 pixels each");
    return *size;
}

std::array<int, 2> parsePixel(const char* option, const std::string& text) {
    const auto pixel = parsePair<int>(text, ',');
    if (!pixel)
        refuse(option, text, "X,Y, a pixel");
    return *pixel;
}

int parseBands(const char* option, const std::string& text) {
    const auto bands = parseNumber<int>(text);
    if (!bands || *bands < 1 || *bands > 64)
        refuse(option, text, "a number from 1 to 64");
    return *bands;
}

std::uint32_t parseColor(const char* option, const std::string& text) {
    if (text == "black")
        return 0xFF000000;
    if (text == "white")
        return 0xFFFFFFFF;
    const std::string_view digits = std::string_view(text).substr(text.starts_with('#') ? 1 : 0);
    std::uint32_t rgb = 0;
    const char* end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, rgb, 16);
    if (digits.size() != 6 || error != std::errc() || stop != end)
        refuse(option, text, "RRGGBB, black or white");
    return 0xFF000000 | (rgb & 0xFF) << 16 | (rgb & 0xFF00) | rgb >> 16;
}

std::optional<double> parseDeform(const char* option, const std::string& text) {
    if (text == "auto")
        return {};
    const auto factor = parseNumber<double>(text);
    if (!factor)
        refuse(option, text, "auto or a factor");
    return factor;
}

bool parseSwitch(const char* option, const std::string& text) {
    if (text != "on" && text != "off")
        refuse(option, text, "on or off");
    return text == "on";
}

ColorBy parseColorBy(const char* option, const std::string& text) {
    if (text == "field")
        return ColorBy::Field;
    if (text == "block")
        return ColorBy::Block;
    if (text == "plain")
        return ColorBy::Plain;
    refuse(option, text, "field, block or plain");
}

EdgeMode parseEdges(const char* option, const std::string& text) {
    if (text == "all")
        return EdgeMode::All;
    if (text == "feature")
        return EdgeMode::Feature;
    if (text == "none")
        return EdgeMode::None;
    refuse(option, text, "all, feature or none");
}

ImageUp parseImageUp(const char* option, const std::string& text) {
    constexpr std::string_view kNames[] = {"x", "-x", "y", "-y", "z", "-z"}; // in the enumeration's order
    const auto found = std::find(std::begin(kNames), std::end(kNames), text);
    if (found == std::end(kNames))
        refuse(option, text, "x, -x, y, -y, z or -z");
    return static_cast<ImageUp>(found - std::begin(kNames));
}

Shading parseShading(const char* option, const std::string& text) {
    if (text == "smooth")
        return Shading::Smooth;
    if (text == "flat")
        return Shading::Flat;
    if (text == "element")
        return Shading::Element;
    refuse(option, text, "smooth, flat or element");
}

double parseCrease(const char* option, const std::string& text) {
    const auto angle = parseNumber<double>(text);
    if (!angle || *angle < 0.0 || *angle > 180.0)
        refuse(option, text, "an angle from 0 to 180 degrees");
    return *angle;
}

double parseOpacity(const char* option, const std::string& text) {
    const auto opacity = parseNumber<double>(text);
    if (!opacity || *opacity < 0.0 || *opacity > 1.0)
        refuse(option, text, "a number from 0 to 1");
    return *opacity;
}

ElementList parseElements(const char* option, const std::string& text) {
    const auto list = parseRanges(text);
    if (!list)
        refuse(option, text, "a list of elements such as 0-99,120,200-300");
    return *list;
}

NodeChoice parseNodes(const char* option, const std::string& text) {
    if (text.empty())
        refuse(option, text, "a list of nodes such as 0-99,120 or the name of a node set");
    if (const auto list = parseRanges(text))
        return {*list, ""};
    return {{}, text};
}

SupportedNodes parseSupports(const char* option, const std::string& text) {
    const std::size_t colon = text.rfind(':');
    if (colon == std::string::npos)
        return {parseNodes(option, text)};
    auto support = parseSupportKind(std::string_view(text).substr(colon + 1));
    if (!support)
        refuse(
            option, text,
            "NODES:KIND with clamp, pin, roller, diamond, cross, ring, star, frame, or axis, spring, torsion "
            "or damper and -x, -y or -z");
    support->nodes = parseNodes(option, text.substr(0, colon));
    return *support;
}

std::vector<std::array<std::uint32_t, 2>> parseConnectors(const char* option, const std::string& text) {
    std::vector<std::array<std::uint32_t, 2>> list;
    const auto take = [&list](std::string_view word) {
        const auto pair = parsePair<std::uint32_t>(word, '-');
        if (pair)
            list.push_back(*pair);
        return pair && (*pair)[0] != (*pair)[1];
    };
    if (!forEachWord(text, take))
        refuse(option, text, "a list of pairs of nodes such as 3-40,7-12");
    return list;
}

ConnectorShape parseConnectorShape(const char* option, const std::string& text) {
    if (text == "rivet")
        return ConnectorShape::Rivet;
    if (text == "cylinder")
        return ConnectorShape::Cylinder;
    refuse(option, text, "rivet or cylinder");
}

double parseScale(const char* option, const std::string& text) {
    const auto scale = parseNumber<double>(text);
    if (!scale || !(*scale > 0.0))
        refuse(option, text, "a number above 0");
    return *scale;
}

double parseDisplayScale(const char* option, const std::string& text) {
    const auto scale = parseNumber<double>(text);
    if (!scale || !(*scale >= 0.5 && *scale <= 4.0))
        refuse(option, text, "a number from 0.5 to 4");
    return *scale;
}

ColoredElements parseColored(const char* option, const std::string& text) {
    const auto parts = split(text, '=');
    if (!parts)
        refuse(option, text, "LIST=RRGGBB");
    return {parseElements(option, std::string((*parts)[0])), parseColor(option, std::string((*parts)[1]))};
}

ElementClip parseClip(const char* option, const std::string& text) {
    const auto parts = split(text, ':');
    const std::size_t axis =
        parts && (*parts)[0].size() == 1 ? std::string_view("xyz").find((*parts)[0]) : std::string_view::npos;
    const auto limits = axis != std::string_view::npos ? split((*parts)[1], ',') : std::nullopt;
    if (!limits || ((*limits)[0].empty() && (*limits)[1].empty()))
        refuse(option, text, "AXIS:MIN,MAX, such as z:0,10 or x:,5");
    const auto low = (*limits)[0].empty() ? -kInfinity : parseNumber<double>((*limits)[0]);
    const auto high = (*limits)[1].empty() ? kInfinity : parseNumber<double>((*limits)[1]);
    if (!low || !high || !(*low < *high))
        refuse(option, text, "AXIS:MIN,MAX with MIN below MAX");
    return {static_cast<int>(axis), *low, *high};
}

SectionPlane parseSection(const char* option, const std::string& text) {
    const auto parts = split(text, ':');
    const auto axis = parseAxis(parts ? (*parts)[0] : text);
    if (axis && !parts)
        return {{}, *axis};
    if (const auto place = axis ? parseNumber<double>((*parts)[1]) : std::nullopt)
        return {*place * Point{std::abs((*axis)[0]), std::abs((*axis)[1]), std::abs((*axis)[2])}, *axis};
    const auto at = parts ? parsePoint((*parts)[0]) : std::nullopt;
    const auto normal = parts ? parsePoint((*parts)[1]) : std::nullopt;
    if (!at || !normal || !(length(*normal) > 0.0) || !std::isfinite(length(*normal)))
        refuse(option, text, "AXIS, AXIS:PLACE or X,Y,Z:NX,NY,NZ, such as x, -z:30 or 0,0,5:1,1,0");
    return {*at, *normal};
}

int parseLevel(const char* option, const std::string& text) {
    const auto level = parseNumber<int>(text);
    if (!level || *level < 0)
        refuse(option, text, "a whole number from 0");
    return *level;
}

Motion parseMotion(const char* option, const std::string& text) {
    if (text == "steps")
        return Motion::Steps;
    if (text == "phase")
        return Motion::Phase;
    refuse(option, text, "steps or phase");
}

AnimationSettings parseAnimation(const char* option, const std::string& text) {
    const auto parts = split(text, ':');
    const auto frames = parseNumber<int>(parts ? (*parts)[0] : text);
    if (!frames || *frames < 1)
        refuse(option, text, "a number of frames from 1, alone or with :steps or :phase");
    if (!parts)
        return {*frames, {}};
    return {*frames, parseMotion(option, std::string((*parts)[1]))};
}

} // namespace nruview
