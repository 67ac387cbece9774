// Collections of .vtu files (.pvd): one mesh whose results stand in a file for each time.
#include <pugixml.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "viewer/readers/readers.h"

namespace nruview::readers {

namespace {

namespace fs = std::filesystem;

struct Member {
    double time = 0;
    std::string file;
};

std::vector<Member> readMembers(std::string_view content) {
    pugi::xml_document document;
    const pugi::xml_parse_result result = document.load_buffer(content.data(), content.size());
    if (!result)
        throw Refusal("is not well-formed XML: " + std::string(result.description()));
    std::vector<Member> members;
    for (const pugi::xml_node node : document.child("VTKFile").child("Collection").children("DataSet"))
        members.push_back({node.attribute("timestep").as_double(static_cast<double>(members.size())),
                           node.attribute("file").as_string()});
    if (members.empty())
        throw Refusal("names no files");
    if (!std::all_of(members.begin(), members.end(), [](const Member& m) { return std::isfinite(m.time); }))
        throw Refusal("has times that are no numbers");
    std::stable_sort(members.begin(), members.end(),
                     [](const Member& a, const Member& b) { return a.time < b.time; });
    const auto twice = std::adjacent_find(
        members.begin(), members.end(), [](const Member& a, const Member& b) { return !(a.time < b.time); });
    if (twice != members.end())
        throw Refusal("has several files for one time, such as " + twice->file + "; open one of them");
    return members;
}

/// What a file names lies in its folder or below it.
fs::path pathOf(const Member& member, const fs::path& folder) {
    const fs::path path = member.file;
    if (path.empty() || path.is_absolute() || std::find(path.begin(), path.end(), "..") != path.end())
        throw Refusal("names '" + member.file + "', which does not lie in its folder");
    return folder / path;
}

Model readMember(const Member& member, const fs::path& folder) {
    const fs::path path = pathOf(member, folder);
    try {
        Model model = readVtu(loadFile(path));
        checkModel(model, member.file);
        return model;
    } catch (const Refusal& refusal) {
        throw Refusal("names " + member.file + ", which " + refusal.what());
    }
}

std::string timeLabel(double time) {
    char text[40];
    std::snprintf(text, sizeof text, "time %.6g", time);
    return text;
}

/// The fields of a step; refuses a mesh that changes, and notes nodes that move.
void addStep(Model& model, Model step, const Member& member) {
    if (step.types != model.types || step.connectivity != model.connectivity ||
        step.nodes.size() != model.nodes.size())
        throw Refusal("has another mesh in " + member.file +
                      " than at its first time; open one of its files");
    const std::string moved = "nodes move from file to file; they stay where the first one has them";
    if (step.nodes != model.nodes &&
        std::find(model.notes.begin(), model.notes.end(), moved) == model.notes.end())
        model.notes.push_back(moved);
    for (Field& field : step.fields) {
        field.step = static_cast<std::uint32_t>(model.steps.size());
        model.fields.push_back(std::move(field));
    }
    model.steps.push_back({timeLabel(member.time), member.time});
}

} // namespace

bool isCollection(std::string_view content) {
    const std::size_t root = content.find("<VTKFile");
    return root != std::string_view::npos &&
           content.substr(root, content.find('>', root) - root).find("\"Collection\"") !=
               std::string_view::npos;
}

Model readCollection(std::string_view content, const fs::path& path) {
    const std::vector<Member> members = readMembers(content);
    const fs::path folder = path.parent_path();
    std::uintmax_t size = 0;
    for (const Member& member : members) {
        std::error_code error;
        const std::uintmax_t bytes = fs::file_size(pathOf(member, folder), error);
        size += error ? 0 : bytes;
    }
    checkMemory(size);
    Model model = readMember(members.front(), folder);
    Model first = model;
    model.fields.clear();
    addStep(model, std::move(first), members.front());
    for (std::size_t i = 1; i < members.size(); ++i)
        addStep(model, readMember(members[i], folder), members[i]);
    return model;
}

} // namespace nruview::readers
