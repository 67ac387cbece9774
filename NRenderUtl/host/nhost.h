// What the library needs from its host application: messages, diagnostics, settings, memory and images, each
// with a working default that an embedding application may replace.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "NRenderUtl/ntypes.h"

/// Kind of a console message.
enum NHostMessageKind {
    NHostMessageNote = 0,   ///< a refusal or a data problem
    NHostMessageAdvice = 1, ///< advice to the user, such as a driver update
    NHostMessageStatus = 2, ///< a decision taken, or a driver's own log
};

/// Level of a posted diagnostic.
enum NHostDiagnosticLevel {
    NHostDiagnosticMisuse = 1, ///< the interface was called in the wrong order or state
    NHostDiagnosticCount = 2,  ///< house-keeping figures
};

/// Services that the host may supply. A null member keeps the library's default. All texts are UTF-8.
/// The functions and what context points to must last until other services are installed, or else as long as
/// the process. They must not throw.
struct NHostServices {
    void* context; ///< handed back as first argument of every function

    /// Shows a console message; kind is an NHostMessageKind. Default: standard error.
    void (*message)(void* context, int kind, const char* text);
    /// Receives a diagnostic; level is an NHostDiagnosticLevel. Default: standard error.
    void (*diagnostic)(void* context, int level, const char* text);
    /// Value of a named setting, copied at once, or null where the host has none (the environment is asked
    /// next). A setting that is read while the library loads comes from the environment alone.
    const char* (*setting)(void* context, const char* name);

    /// Memory, given and taken back together: both members or neither. allocate may return null.
    void* (*allocate)(void* context, std::size_t bytes, const char* file, int line);
    void (*release)(void* context, void* block);

    /// Images, all three members or none. Rows run from top to bottom, channels interleaved: 1 (grey), 3
    /// (RGB) or 4 (RGBA), as asked for; floats 3 or 4. Null on failure. freeImage never gets null.
    unsigned char* (*loadImage)(void* context, const char* path, int channels, int* width, int* height);
    float* (*loadFloatImage)(void* context, const char* path, int channels, int* width, int* height);
    void (*freeImage)(void* context, void* pixels);
};

/// Installs the host's services; null restores every default. The record is copied.
/// Returns 0; -1, with nothing changed, when only a part of the memory or image functions is given or when
/// memory functions (or the context they receive) would change while blocks of the library are alive.
NRENDERUTL_API int NHostSetServices(const NHostServices* services) noexcept;

/// Allocates a block tagged with its source position; null when there is no memory. Free it with NHostFree.
/// Aligned for any type by default, else as the host's function does it. file is kept, not copied.
NRENDERUTL_API void* NHostAllocate(std::size_t bytes, const char* file, int line) noexcept;
/// Frees a block of NHostAllocate; null is ignored.
NRENDERUTL_API void NHostFree(void* block) noexcept;
/// Number of blocks allocated through NHostAllocate and not yet freed.
NRENDERUTL_API std::size_t NHostLiveBlocks() noexcept;
/// Posts one diagnostic per live block of the default allocator: its size, file and line. Returns their
/// number.
NRENDERUTL_API std::size_t NHostReportLiveBlocks() noexcept;

/// Allocation tagged with the caller's file and line.
#define NHOST_ALLOCATE(bytes) NHostAllocate((bytes), __FILE__, __LINE__)

/// Switches the console message that is written when the library is detached while the process still runs;
/// off by default. Call it from main() on, not from a static initialiser.
NRENDERUTL_API void NHostEnableUnloadWarning(bool enable) noexcept;

/// Anchor that keeps the library mapped for the life of the process; it does nothing.
extern "C" NRENDERUTL_API void __localFnToKeepNRenderUtlDllLoaded();

/// Wide string of the interface. Narrow text is UTF-8; bytes that are not become U+FFFD. A null pointer gives
/// the empty text. Nothing throws across the interface: lack of memory for a text ends the process.
class NRENDERUTL_API GuString {
public:
    GuString() = default;
    GuString(const wchar_t* text) noexcept;
    GuString(std::wstring text) noexcept;
    GuString(const char* utf8) noexcept;
    GuString(std::string_view utf8) noexcept;

    bool IsEmpty() const { return m_text.empty(); }
    std::size_t GetLength() const { return m_text.size(); }
    const wchar_t* c_str() const { return m_text.c_str(); }
    const std::wstring& Wide() const { return m_text; }
    std::string Utf8() const noexcept;

    GuString& operator+=(const GuString& tail) noexcept;
    friend GuString operator+(GuString head, const GuString& tail) { return head += tail; }
    friend bool operator==(const GuString&, const GuString&) = default;

private:
    std::wstring m_text;
};

/// A file name: a GuString with path operations.
class NRENDERUTL_API GuStringFileName : public GuString {
public:
    using GuString::GuString;
    GuStringFileName() = default;
    GuStringFileName(const GuString& text) : GuString(text) {}

    /// The name with both kinds of separator made the platform's own, and ".", ".." and doubled separators
    /// resolved.
    GuStringFileName Normalized() const noexcept;
    /// Whether it names something that is there and no folder.
    bool Exists() const noexcept;
};

/// Strict weak order of strings: code point by code point, case matters.
struct NRENDERUTL_API GuStringPredicate {
    bool operator()(const GuString& a, const GuString& b) const noexcept;
};

/// An error that a function returns. A null NErrorPtr means success.
class NRENDERUTL_API NError {
public:
    explicit NError(GuString text) noexcept;
    const wchar_t* GetText() const { return m_text.c_str(); }
    const char* GetTextUtf8() const { return m_utf8.c_str(); }

private:
    GuString m_text;
    std::string m_utf8;
};
using NErrorPtr = std::unique_ptr<NError>;
