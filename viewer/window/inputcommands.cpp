// What was pressed last is what is released.
#include "viewer/window/inputcommands.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "viewer/error.h"

namespace nruview {

namespace {

double numberOf(const std::string& word) {
    double number = 0.0;
    const char* end = word.data() + word.size();
    const auto [stop, error] = std::from_chars(word.data(), end, number);
    if (error != std::errc() || stop != end || !(std::abs(number) < 1e6))
        throw ViewerError("'" + word + "'", "is not a number");
    return number;
}

void requireWords(const Words& words, std::size_t count, const char* form) {
    if (words.size() != count)
        throw ViewerError(words[0], std::string("takes ") + form);
}

void press(Interaction& interaction, const Words& words) {
    MouseButton button = MouseButton::Left;
    Modifiers held;
    for (std::size_t i = 1; i < words.size(); ++i) {
        const std::string& word = words[i];
        if (word == "middle")
            button = MouseButton::Middle;
        else if (word == "right")
            button = MouseButton::Right;
        else if (word == "shift")
            held.shift = true;
        else if (word == "ctrl")
            held.control = true;
        else if (word != "left")
            throw ViewerError("'" + word + "'", "is none of left, middle, right, shift and ctrl");
    }
    interaction.press(button, held);
}

} // namespace

WindowRequest runInput(Interaction& interaction, const Words& words) {
    if (words[0] == "press") {
        press(interaction, words);
    } else if (words[0] == "move") {
        requireWords(words, 3, "X and Y");
        interaction.move(numberOf(words[1]), numberOf(words[2]));
    } else if (words[0] == "wheel") {
        requireWords(words, 2, "a number of notches");
        interaction.wheel(numberOf(words[1]));
    } else if (words[0] == "key") {
        requireWords(words, 2, "a name such as f or shift+f");
        return interaction.key(words[1]);
    } else {
        requireWords(words, 1, "nothing");
        if (words[0] == "release")
            interaction.release();
        else
            interaction.rest();
    }
    return WindowRequest::None;
}

} // namespace nruview
