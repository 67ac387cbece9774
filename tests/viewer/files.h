// Files that a case writes into a folder of its own, what is read of them, and what is said of bad ones.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "viewer/error.h"
#include "viewer/model/model.h"

namespace nrutest {

using namespace nruview;
using testing::DoubleNear, testing::ElementsAre, testing::HasSubstr, testing::IsEmpty, testing::IsNan;
using testing::StartsWith, testing::ThrowsMessage;

template <class T>
std::string bytesOf(const T& value, bool bigEndian) {
    std::string bytes(reinterpret_cast<const char*>(&value), sizeof(T));
    if (bigEndian)
        std::reverse(bytes.begin(), bytes.end());
    return bytes;
}

template <class... Values>
std::string bytes(const Values&... values) {
    return (bytesOf(values, false) + ...);
}

/// With another text in the first place of one that is there.
inline std::string replaced(std::string text, const std::string& from, const std::string& to) {
    return text.replace(text.find(from), from.size(), to);
}

/// Everything of a model as text; no list in it is longer than what is printed in full.
inline std::string dump(const Model& m) {
    std::string text = testing::PrintToString(
        std::tuple(m.nodes, m.types, m.offsets, m.connectivity, m.nodeNumbers, m.cellNumbers, m.notes));
    for (const ModelPart& part : m.parts)
        text += testing::PrintToString(std::tuple(part.name, part.firstCell, part.cellCount));
    for (const Field& f : m.fields)
        text += testing::PrintToString(std::tuple(f.name, f.location, f.components, f.step, f.values));
    return text;
}

/// Each part with its first cell, such as "left 0, right 4, ".
inline std::string partsOf(const Model& model) {
    std::ostringstream text;
    for (const ModelPart& part : model.parts)
        text << part.name << ' ' << part.firstCell << ", ";
    return text.str();
}

/// Each node set with its nodes, such as "held: 0 1, loaded: 4, ".
inline std::string setsOf(const Model& model) {
    std::ostringstream text;
    for (const NodeSet& set : model.nodeSets) {
        text << set.name << ":";
        for (const std::uint32_t node : set.nodes)
            text << ' ' << node;
        text << ", ";
    }
    return text.str();
}

/// A file and a piece of the reason that it is refused with.
struct BadFile {
    std::string content, reason;
};

/// A folder of its own, gone with this.
class Folder {
public:
    Folder() { std::filesystem::create_directories(m_path); }
    ~Folder() { std::filesystem::remove_all(m_path); }

    std::string path(const std::string& name) const { return (m_path / name).string(); }
    void write(const std::string& name, const std::string& content) const {
        std::filesystem::create_directories((m_path / name).parent_path());
        std::filesystem::remove(m_path / name); // one written over may wait for the disk
        std::ofstream(m_path / name, std::ios::binary) << content;
    }
    std::string contents(const std::string& name) const {
        std::ostringstream text;
        text << std::ifstream(m_path / name, std::ios::binary).rdbuf();
        return text.str();
    }

    Model parse(const std::string& content, const std::string& name = "model") const {
        write(name, content);
        return readModel(path(name));
    }
    /// The one line with which a file is refused, without the file's name.
    std::string refusal(const std::string& name) const {
        try {
            readModel(path(name));
        } catch (const ViewerError& error) {
            const std::string text = error.what(), start = path(name) + ": ";
            EXPECT_TRUE(text.starts_with(start) && text.find('\n') == text.npos) << text;
            return text.substr(std::min(start.size(), text.size()));
        }
        return "was read";
    }
    void expectRefused(const std::vector<BadFile>& files, const std::string& name = "model") const {
        for (const auto& [content, reason] : files) {
            write(name, content);
            EXPECT_THAT(refusal(name), HasSubstr(reason));
        }
    }
    /// A file cut short is refused, or gives the whole mesh where only fields or ends are missing.
    void expectRefusedWhenCutShort(const std::string& content, const Model& whole, std::size_t step) const {
        std::size_t refused = 0;
        for (std::size_t length = 0; length < content.size(); length += step) {
            write("model", content.substr(0, length));
            if (refusal("model") != "was read") {
                ++refused;
                continue;
            }
            const Model model = readModel(path("model"));
            ASSERT_EQ(model.nodes, whole.nodes) << length;
            ASSERT_EQ(model.connectivity, whole.connectivity) << length;
        }
        EXPECT_GT(refused, content.size() / step / 3);
    }

private:
    static inline int made = 0;
    const std::filesystem::path m_path =
        std::filesystem::temp_directory_path() /
        ("nruview_" + std::to_string(getpid()) + "_" + std::to_string(++made));
};

inline Model readText(const std::string& content) {
    return Folder().parse(content);
}

} // namespace nrutest
