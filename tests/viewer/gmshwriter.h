// One small model, written in the versions and encodings of Gmsh files
// (https://gmsh.info/doc/texinfo/gmsh.html, "MSH file format"): two hexahedra in groups of their own, a quad
// on the first, a point.
#pragma once

#include "tests/viewer/files.h"

namespace nrutest {

struct MshWriter {
    int version = 22; ///< or 40, 41
    bool binary = false, bigEndian = false;
    std::ostringstream file = {};

    template <class T>
    void put(T value) {
        binary ? file << bytesOf(value, bigEndian) : file << value << ' ';
    }
    void integer(int value) { put(value); }
    void size(long value) { put(value); }
    void number(int value) { version == 41 ? size(value) : integer(value); }
    void entity(int dimension, int tag) {
        integer(version == 41 ? dimension : tag);
        integer(version == 41 ? tag : dimension);
    }
    void node(int i) { // of the 12: 4 layers of 3 along x
        put(i % 3 + 0.5), put(1.25 * (i / 3 % 2)), put(2.0 * (i / 6));
    }

    struct Element {
        int number, type, dimension, group;
        std::vector<int> nodes;
    };
    // Nodes are numbered 10, 20, ... 120.
    std::vector<Element> elements = {{1, 15, 0, 9, {30}},
                                     {31, 3, 2, 3, {10, 20, 50, 40}},
                                     {101, 5, 3, 7, {10, 20, 50, 40, 70, 80, 110, 100}},
                                     {102, 5, 3, 5, {20, 30, 60, 50, 80, 90, 120, 110}}};

    void format() {
        file << "$MeshFormat\n" << version / 10 << '.' << version % 10 << ' ' << binary << " 8\n";
        if (binary)
            integer(1);
        file << "\n$EndMeshFormat\n$Comments\nno matter\n$EndComments\n$PhysicalNames\n3\n0 9 \"held node\"\n"
             << "3 7 \"left\"\n3 5 \"right\"\n$EndPhysicalNames\n";
    }
    void entities() { // one for each element, with its tag
        file << "$Entities\n";
        for (const int count : {1, 0, 1, 2})
            size(count);
        for (const Element& e : elements) {
            integer(e.number);
            for (int i = e.dimension == 0 && version == 41 ? 3 : 0; i < 6; ++i)
                put(0.5);
            size(1), integer(e.group);
            if (e.dimension > 0)
                size(2), integer(5), integer(-6);
        }
        file << "\n$EndEntities\n";
    }
    void nodes() {
        file << "$Nodes\n";
        if (version == 22)
            file << "12\n";
        else
            size(1), size(12);
        if (version == 41)
            size(10), size(120);
        if (version > 22)
            entity(2, 31), integer(1), size(12); // with parameters
        for (int i = 0; i < 12 && version == 41; ++i)
            size(10 * i + 10);
        for (int i = 0; i < 12; ++i) {
            if (version < 41)
                integer(10 * i + 10);
            node(i);
            if (version > 22)
                put(0.5), put(0.25);
        }
        file << "\n$EndNodes\n";
    }
    void mesh() {
        file << "$Elements\n";
        if (version == 22)
            file << "4\n";
        else
            size(4), size(4);
        if (version == 41)
            size(1), size(102);
        for (const Element& e : elements) {
            if (version > 22)
                entity(e.dimension, e.number), integer(e.type), size(1), number(e.number);
            else if (binary)
                integer(e.type), integer(1), integer(2), integer(e.number);
            else
                integer(e.number), integer(e.type), integer(2);
            if (version == 22)
                integer(-e.group), integer(e.number);
            for (const int n : e.nodes)
                number(n);
            file << (binary ? "" : "\n");
        }
        file << "\n$EndElements\n";
    }
    void data(const std::string& kind, const std::string& name, int step, int components,
              const std::vector<std::pair<int, std::vector<double>>>& rows) {
        file << '$' << kind << "\n2\n\"" << name << "\"\n\"scheme\"\n1\n"
             << 0.25 * step << "\n3\n"
             << step << '\n'
             << components << '\n'
             << rows.size() << '\n';
        for (const auto& [number, values] : rows) {
            integer(number);
            if (kind == "ElementNodeData")
                integer(static_cast<int>(values.size()) / components);
            for (const double value : values)
                put(value);
        }
        file << "\n$End" << kind << "\n";
    }

    std::string write() {
        format();
        if (version > 22)
            entities();
        nodes();
        mesh();
        data("NodeData", "T", 0, 1, {{20, {1.5}}, {120, {-2}}});
        data("NodeData", "T", 2, 1, {{120, {3}}});
        data("ElementData", "P", 2, 2, {{102, {5, 6}}, {101, {7, 8}}, {999, {0, 0}}});
        data("ElementNodeData", "C", 2, 1,
             {{101, {1, 2, 3, 4, 5, 6, 7, 8}}, {102, {4, 5, 6, 7, 8, 9, 0, 1}}});
        file << "$Periodic\n0\n$EndPeriodic\n";
        return file.str();
    }
};

} // namespace nrutest
