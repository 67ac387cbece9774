// Rows of the panel: a name at the left, what it is set to at the right. Each returns whether the user has
// set it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace nruview::widgets {

/// Closed or open, by a click on its heading.
bool section(const char* name, bool openAtFirst);
bool toggle(const char* name, bool& on);
bool choose(const char* name, const std::vector<std::string>& items, int& chosen);
bool slide(const char* name, double& value, double low, double high, const char* format);
bool slide(const char* name, int& value, int low, int high);
/// Set once the user has done typing.
bool number(const char* name, double& value);
bool text(const char* name, std::string& value);
/// Packed 0xAABBGGRR.
bool color(const char* name, std::uint32_t& value);
/// Buttons that share a row: this is the index-th of count. A wish for a note below the mouse.
bool button(const char* label, int index = 0, int count = 1, const char* note = nullptr);
/// A row that is only read.
void fact(const char* name, const std::string& value);

/// Rows within are grey and cannot be set.
class Disabled {
public:
    explicit Disabled(bool disabled);
    ~Disabled();
    Disabled(const Disabled&) = delete;
    Disabled& operator=(const Disabled&) = delete;
};

} // namespace nruview::widgets
