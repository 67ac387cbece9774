// Named settings: the host's own values first, then the environment's.
#include <algorithm>
#include <charconv>
#include <cstdlib>

#include "NRenderUtl/host/hostutl.h"
#include "NRenderUtl/host/services.h"

namespace {

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kBlanks = " \t\r\n\f\v";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::optional<int> toInt(std::string_view text) {
    text = trimmed(text);
    if (text.size() > 1 && text[0] == '+' && text[1] != '-')
        text.remove_prefix(1);
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

std::string lowered(std::string_view text) {
    std::string lower(text);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return lower;
}

std::optional<bool> toBool(std::string_view text) {
    const std::string word = lowered(trimmed(text));
    constexpr std::string_view kTrue[] = {"1", "true", "yes", "on"};
    constexpr std::string_view kFalse[] = {"0", "false", "no", "off"};
    if (std::find(std::begin(kTrue), std::end(kTrue), word) != std::end(kTrue))
        return true;
    if (std::find(std::begin(kFalse), std::end(kFalse), word) != std::end(kFalse))
        return false;
    return std::nullopt;
}

} // namespace

std::optional<std::string> hostSetting(const char* name) {
    const NHostServices& services = hostServices();
    const char* value = services.setting != nullptr ? services.setting(services.context, name) : nullptr;
    if (value == nullptr)
        value = std::getenv(name);
    return value != nullptr ? std::optional<std::string>(value) : std::nullopt;
}

bool hostBoolSetting(const char* name, bool defaultValue) {
    const std::optional<std::string> text = hostSetting(name);
    return text ? toBool(*text).value_or(defaultValue) : defaultValue;
}

int hostIntSetting(const char* name, int defaultValue) {
    const std::optional<std::string> text = hostSetting(name);
    return text ? toInt(*text).value_or(defaultValue) : defaultValue;
}

GuString hostStringSetting(const char* name, const GuString& defaultValue) {
    const std::optional<std::string> text = hostSetting(name);
    return text ? GuString(std::string_view(*text)) : defaultValue;
}

std::optional<int> hostEnvironmentInt(const char* name) {
    const char* text = std::getenv(name);
    return text != nullptr ? toInt(text) : std::nullopt;
}
