// Narrow and wide text: UTF-8 outside, wchar_t inside (UTF-32 on Linux, UTF-16 on Windows).
#include <clocale>
#include <cwchar>
#include <type_traits>
#include <utility>

#include "NRenderUtl/host/hostutl.h"

namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr bool kWideIsUtf16 = sizeof(wchar_t) == 2;

bool isCodePoint(char32_t c) {
    return c <= 0x10FFFF && (c < 0xD800 || c > 0xDFFF);
}

// Bounds of the second byte and the length of a sequence by its lead byte (Unicode 15, table 3-7).
struct Utf8Lead {
    int length;
    unsigned char secondLow, secondHigh;
};

Utf8Lead classify(unsigned char lead) {
    if (lead < 0x80)
        return {1, 0, 0};
    if (lead >= 0xC2 && lead <= 0xDF)
        return {2, 0x80, 0xBF};
    if (lead >= 0xE0 && lead <= 0xEF)
        return {3, static_cast<unsigned char>(lead == 0xE0 ? 0xA0 : 0x80),
                static_cast<unsigned char>(lead == 0xED ? 0x9F : 0xBF)};
    if (lead >= 0xF0 && lead <= 0xF4)
        return {4, static_cast<unsigned char>(lead == 0xF0 ? 0x90 : 0x80),
                static_cast<unsigned char>(lead == 0xF4 ? 0x8F : 0xBF)};
    return {0, 0, 0};
}

// Takes one code point off the front; an ill-formed part (its longest valid prefix) becomes one replacement.
char32_t takeUtf8(std::string_view& text) {
    const unsigned char lead = static_cast<unsigned char>(text[0]);
    const Utf8Lead kind = classify(lead);
    text.remove_prefix(1);
    if (kind.length == 0)
        return kReplacement;
    char32_t code = kind.length == 1 ? lead : lead & (0x7Fu >> kind.length);
    for (int i = 1; i < kind.length; ++i) {
        const unsigned char low = i == 1 ? kind.secondLow : 0x80;
        const unsigned char high = i == 1 ? kind.secondHigh : 0xBF;
        const unsigned char byte = text.empty() ? 0 : static_cast<unsigned char>(text[0]);
        if (byte < low || byte > high)
            return kReplacement;
        code = (code << 6) | (byte & 0x3Fu);
        text.remove_prefix(1);
    }
    return code;
}

void appendWide(std::wstring& wide, char32_t code) {
    if (kWideIsUtf16 && code > 0xFFFF) {
        wide += static_cast<wchar_t>(0xD800 + ((code - 0x10000) >> 10));
        wide += static_cast<wchar_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
        return;
    }
    wide += static_cast<wchar_t>(code);
}

// Takes one unit off the front, joining a surrogate pair where wide text is UTF-16.
char32_t takeWide(std::wstring_view& text) {
    const char32_t unit = static_cast<std::make_unsigned_t<wchar_t>>(text[0]);
    text.remove_prefix(1);
    if (!kWideIsUtf16 || unit < 0xD800 || unit > 0xDBFF || text.empty())
        return unit;
    const char32_t low = static_cast<std::make_unsigned_t<wchar_t>>(text[0]);
    if (low < 0xDC00 || low > 0xDFFF)
        return unit;
    text.remove_prefix(1);
    return 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
}

void appendUtf8(std::string& narrow, char32_t code) {
    const int length = code < 0x80 ? 1 : code < 0x800 ? 2 : code < 0x10000 ? 3 : 4;
    if (length == 1) {
        narrow += static_cast<char>(code);
        return;
    }
    narrow += static_cast<char>((0xF00u >> length) | (code >> (6 * (length - 1))));
    for (int i = length - 2; i >= 0; --i)
        narrow += static_cast<char>(0x80u | ((code >> (6 * i)) & 0x3Fu));
}

} // namespace

std::wstring hostWiden(std::string_view utf8) {
    std::wstring wide;
    wide.reserve(utf8.size());
    while (!utf8.empty())
        appendWide(wide, takeUtf8(utf8));
    return wide;
}

std::string hostNarrow(std::wstring_view wide) {
    std::string narrow;
    narrow.reserve(wide.size());
    while (!wide.empty()) {
        const char32_t code = takeWide(wide);
        appendUtf8(narrow, isCodePoint(code) ? code : kReplacement);
    }
    return narrow;
}

float hostWideToFloat(const wchar_t* text) {
    if (text == nullptr)
        return 0;
#ifdef _WIN32
    static const _locale_t kCLocale = _create_locale(LC_ALL, "C");
    return static_cast<float>(_wcstod_l(text, nullptr, kCLocale));
#else
    static const locale_t kCLocale = newlocale(LC_ALL_MASK, "C", nullptr);
    return wcstof_l(text, nullptr, kCLocale);
#endif
}

GuString::GuString(const wchar_t* text) noexcept : m_text(text != nullptr ? text : L"") {}
GuString::GuString(std::wstring text) noexcept : m_text(std::move(text)) {}
GuString::GuString(const char* utf8) noexcept : m_text(hostWiden(utf8 != nullptr ? utf8 : "")) {}
GuString::GuString(std::string_view utf8) noexcept : m_text(hostWiden(utf8)) {}

std::string GuString::Utf8() const noexcept {
    return hostNarrow(m_text);
}

GuString& GuString::operator+=(const GuString& tail) noexcept {
    m_text += tail.m_text;
    return *this;
}

bool GuStringPredicate::operator()(const GuString& a, const GuString& b) const noexcept {
    std::wstring_view left = a.Wide(), right = b.Wide();
    while (!left.empty() && !right.empty()) {
        const char32_t l = takeWide(left), r = takeWide(right);
        if (l != r)
            return l < r;
    }
    return left.empty() && !right.empty();
}
