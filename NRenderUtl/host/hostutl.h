// The host utility library as the rest of the library calls it: messages, settings, files, prompts, errors.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "NRenderUtl/host/nhost.h"

/// Console message of a kind (NHostMessageKind); UTF-8.
void hostMessage(int kind, const char* text);
/// Posted diagnostic of a level (NHostDiagnosticLevel); UTF-8.
void hostDiagnostic(int level, const char* text);

/// printf-style formatting into a string.
[[gnu::format(printf, 1, 2)]] std::string hostFormat(const char* format, ...);

/// Setting by name: the host's own value first, then the environment's; nothing when neither has it.
std::optional<std::string> hostSetting(const char* name);
/// "1", "true", "yes", "on" and their opposites in any case; anything else gives the default.
bool hostBoolSetting(const char* name, bool defaultValue);
/// Decimal integer, surrounding blanks allowed; anything else, or out of range, gives the default.
int hostIntSetting(const char* name, int defaultValue);
/// Text; the default when not set.
GuString hostStringSetting(const char* name, const GuString& defaultValue);
/// Environment variable read as a decimal integer, without asking the host's settings.
std::optional<int> hostEnvironmentInt(const char* name);

/// Narrow (UTF-8) to wide and back; ill-formed input becomes U+FFFD.
std::wstring hostWiden(std::string_view utf8);
std::string hostNarrow(std::wstring_view wide);
/// Leading decimal number of a wide text as a float, as wcstof reads it in the C locale; 0 when there is
/// none.
float hostWideToFloat(const wchar_t* text);

/// Last-modification time of a file in nanoseconds of the file system's clock; nothing when it cannot be
/// read.
std::optional<std::int64_t> hostFileDate(const GuStringFileName& path);

/// The process-wide switch that suppresses prompts.
void hostBlockPrompts(bool block);
bool hostPromptsBlocked();

/// Builds an error object from a UTF-8 text.
NErrorPtr hostError(std::string_view text);

/// Tolerance for comparing values of the size of `value`: 1e-10 of its magnitude, at least 1e-30.
double hostTolerance(double value);
/// Whether two values differ by less than the tolerance of the larger one.
bool hostEqual(double a, double b);

/// What happens when the library is detached from the process; see NHostEnableUnloadWarning.
void hostLibraryDetach(bool processIsEnding);
/// Whether the calling thread is past its end, as the one that runs the process's exit handlers is. A thread
/// is watched from its first call on.
bool hostThreadIsEnding();
