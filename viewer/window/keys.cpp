#include "viewer/window/keys.h"

#include <epoxy/gl.h>
// epoxy first: it takes the place of the GL header that GLFW would include.
#include <GLFW/glfw3.h>

#include "viewer/labels/text.h"

namespace nruview {

namespace {

/// Keys without a letter, and the digits, which some keyboards have above others.
std::string plainName(int key, int scancode) {
    if (key >= GLFW_KEY_0 && key <= GLFW_KEY_9)
        return std::string(1, static_cast<char>('0' + key - GLFW_KEY_0));
    if (key >= GLFW_KEY_KP_0 && key <= GLFW_KEY_KP_9)
        return std::string(1, static_cast<char>('0' + key - GLFW_KEY_KP_0));
    switch (key) {
    case GLFW_KEY_SPACE:
        return "space";
    case GLFW_KEY_TAB:
        return "tab";
    case GLFW_KEY_ESCAPE:
        return "escape";
    case GLFW_KEY_LEFT:
        return "left";
    case GLFW_KEY_RIGHT:
        return "right";
    default:
        break;
    }
    const char* letter = glfwGetKeyName(key, scancode);
    return letter != nullptr ? lowerCase(letter) : "";
}

} // namespace

std::string keyName(int key, int scancode, int modifiers) {
    const std::string name = plainName(key, scancode);
    if (name.empty() || (modifiers & (GLFW_MOD_ALT | GLFW_MOD_SUPER)) != 0)
        return "";
    return std::string((modifiers & GLFW_MOD_CONTROL) != 0 ? "ctrl+" : "") +
           ((modifiers & GLFW_MOD_SHIFT) != 0 ? "shift+" : "") + name;
}

} // namespace nruview
