#include "KVTObjImporter.h"

#include "File.h"
#include "KVTSceneWriter.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <sstream>
#include <unordered_map>

namespace R = KVTSceneRecord;

namespace {

// The words of a line, without its comment.
std::vector<std::string> wordsOf(const std::string& line) {
    std::istringstream in(line.substr(0, line.find('#')));
    std::vector<std::string> words;
    for (std::string word; in >> word;) {
        words.push_back(word);
    }
    return words;
}

bool parseFloat(const std::string& text, float& value) {
    char* end = nullptr;
    value = std::strtof(text.c_str(), &end);
    return end != text.c_str() && *end == '\0';
}

bool parseInt(const std::string& text, int& value) {
    char* end = nullptr;
    errno = 0;
    const long parsed = std::strtol(text.c_str(), &end, 10);
    if (end == text.c_str() || *end != '\0' || errno != 0 || parsed < INT_MIN || parsed > INT_MAX) {
        return false;
    }
    value = static_cast<int>(parsed);
    return true;
}

std::string lastPathComponent(const std::string& path) {
    const std::size_t slash = path.find_last_of("/\\");
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? "" : path.substr(0, slash + 1);
}

// The element's index in out, appending it from source the first time it is met.
int localIndex(std::unordered_map<int, int>& seen, int index, const std::vector<float>& source,
               std::size_t size, std::vector<float>& out) {
    auto [at, added] = seen.emplace(index, static_cast<int>(out.size() / size));
    if (added) {
        const auto first = source.begin() + static_cast<long>(index * size);
        out.insert(out.end(), first, first + static_cast<long>(size));
    }
    return at->second;
}

R::Float3 flatNormal(const float* p0, const float* p1, const float* p2) {
    const float a[3] = {p1[0] - p0[0], p1[1] - p0[1], p1[2] - p0[2]};
    const float b[3] = {p2[0] - p0[0], p2[1] - p0[1], p2[2] - p0[2]};
    R::Float3 n{a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
    const float length = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]);
    if (length == 0) {
        // A degenerate triangle covers no pixels; any unit normal will do.
        return R::Float3{0, 0, 1};
    }
    return R::Float3{n[0] / length, n[1] / length, n[2] / length};
}

} // namespace

bool KVTObjImporter::fail(const std::string& message) {
    errorMessage = fileName + ":" + std::to_string(lineNumber) + ": " + message;
    return false;
}

bool KVTObjImporter::readLines(const std::string& text, const std::string& name,
                               bool (KVTObjImporter::*reader)(const std::vector<std::string>&)) {
    fileName = name;
    lineNumber = 0;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        ++lineNumber;
        const std::vector<std::string> words = wordsOf(line);
        if (!words.empty() && !(this->*reader)(words)) {
            return false;
        }
    }
    return true;
}

bool KVTObjImporter::readFile(const std::string& objPath) {
    File obj(objPath, File::READ);
    if (!obj.exists()) {
        errorMessage = "Cannot read '" + objPath + "'";
        return false;
    }
    if (!readObj(obj.getAsString(), objPath)) {
        return false;
    }
    for (const std::string& library : libraries) {
        const std::string path = folderOf(objPath) + library;
        File mtl(path, File::READ);
        if (!mtl.exists()) {
            errorMessage = "Material library '" + path + "' named by '" + objPath + "' not found";
            return false;
        }
        if (!readMtl(mtl.getAsString(), path)) {
            return false;
        }
    }
    return true;
}

bool KVTObjImporter::readObj(const std::string& text, const std::string& name) {
    return readLines(text, name, &KVTObjImporter::readObjLine);
}

bool KVTObjImporter::readMtl(const std::string& text, const std::string& name) {
    return readLines(text, name, &KVTObjImporter::readMtlLine);
}

bool KVTObjImporter::readObjLine(const std::vector<std::string>& words) {
    const std::string& key = words[0];
    const std::string rest = words.size() > 1 ? words[1] : "";
    if (key == "v") {
        return readVector(words, 3, 3, positions);
    }
    if (key == "vt") {
        return readVector(words, 1, 2, texcoords);
    }
    if (key == "vn") {
        return readVector(words, 3, 3, normals);
    }
    if (key == "f") {
        return readFace(words);
    }
    if (key == "g" || key == "o") {
        switchRun(&rest, nullptr);
    } else if (key == "usemtl") {
        switchRun(nullptr, &rest);
    } else if (key == "mtllib") {
        libraries.insert(libraries.end(), words.begin() + 1, words.end());
    }
    // Smoothing groups, lines, points and free-form geometry are not taken over.
    return true;
}

bool KVTObjImporter::readVector(const std::vector<std::string>& words, std::size_t needed,
                                std::size_t kept, std::vector<float>& out) {
    if (words.size() < needed + 1) {
        return fail("'" + words[0] + "' needs " + std::to_string(needed) + " numbers");
    }
    for (std::size_t i = 1; i <= kept; ++i) {
        float value = 0;
        if (i < words.size() && !parseFloat(words[i], value)) {
            return fail("'" + words[i] + "' is not a number");
        }
        out.push_back(value);
    }
    return true;
}

bool KVTObjImporter::resolveIndex(const std::string& text, int count, const char* what,
                                  int& index) {
    int value = 0;
    if (!parseInt(text, value)) {
        return fail("'" + text + "' is not an index");
    }
    // From 1 on, or counted back from the last element defined so far.
    if (value > 0 && value <= count) {
        index = value - 1;
        return true;
    }
    if (value < 0 && value >= -count) {
        index = count + value;
        return true;
    }
    return fail("a face refers to " + std::string(what) + " " + text + ", but there are " +
                std::to_string(count));
}

bool KVTObjImporter::readCorner(const std::string& token, Corner& corner) {
    std::vector<std::string> parts;
    std::istringstream in(token);
    for (std::string part; std::getline(in, part, '/');) {
        parts.push_back(part);
    }
    if (parts.empty() || parts.size() > 3) {
        return fail("'" + token + "' is not a face corner");
    }
    corner = Corner{-1, -1, -1};
    if (!resolveIndex(parts[0], static_cast<int>(positions.size() / 3), "position",
                      corner.position)) {
        return false;
    }
    if (parts.size() > 1 && !parts[1].empty() &&
        !resolveIndex(parts[1], static_cast<int>(texcoords.size() / 2), "texture coordinate",
                      corner.texcoord)) {
        return false;
    }
    return parts.size() < 3 || parts[2].empty() ||
           resolveIndex(parts[2], static_cast<int>(normals.size() / 3), "normal", corner.normal);
}

bool KVTObjImporter::readFace(const std::vector<std::string>& words) {
    std::vector<Corner> face(words.size() - 1);
    if (face.size() < 3) {
        return fail("a face needs at least three corners");
    }
    for (std::size_t i = 0; i < face.size(); ++i) {
        if (!readCorner(words[i + 1], face[i])) {
            return false;
        }
    }
    std::vector<Corner>& corners = runs.back().corners;
    for (std::size_t i = 1; i + 1 < face.size(); ++i) {
        corners.insert(corners.end(), {face[0], face[i], face[i + 1]});
    }
    return true;
}

void KVTObjImporter::switchRun(const std::string* group, const std::string* material) {
    Run next{group != nullptr ? *group : runs.back().group,
             material != nullptr ? *material : runs.back().material,
             {}};
    if (runs.back().corners.empty()) {
        runs.back() = next;
    } else {
        runs.push_back(next);
    }
}

bool KVTObjImporter::readColour(const std::vector<std::string>& words, R::Float3& colour) {
    if (words.size() < 4) {
        return fail("'" + words[0] + "' needs three numbers");
    }
    for (std::size_t i = 0; i < 3; ++i) {
        if (!parseFloat(words[i + 1], colour[i])) {
            return fail("'" + words[i + 1] + "' is not a number");
        }
    }
    return true;
}

bool KVTObjImporter::readMtlLine(const std::vector<std::string>& words) {
    const std::string& key = words[0];
    if (key == "newmtl") {
        Material material;
        material.name = words.size() > 1 ? words[1] : "";
        materials.push_back(material);
        return true;
    }
    const bool known = key == "Ka" || key == "Kd" || key == "map_Kd";
    if (!known) {
        return true;
    }
    if (materials.empty()) {
        return fail("'" + key + "' before any 'newmtl'");
    }
    Material& material = materials.back();
    if (key == "map_Kd") {
        // Options come first; the file name is last.
        material.texture = lastPathComponent(words.back());
        return true;
    }
    return readColour(words, key == "Ka" ? material.ambient : material.diffuse);
}

int KVTObjImporter::materialId(const std::string& name) const {
    for (std::size_t i = 0; i < materials.size(); ++i) {
        if (materials[i].name == name) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

std::vector<std::string> KVTObjImporter::textureFiles() const {
    std::vector<std::string> files;
    for (const Material& material : materials) {
        const std::string& file = material.texture;
        if (!file.empty() && std::find(files.begin(), files.end(), file) == files.end()) {
            files.push_back(file);
        }
    }
    return files;
}

R::Mesh KVTObjImporter::makeMesh(const Run& run, int id) const {
    R::Mesh mesh;
    mesh.id = id;
    bool allNormals = true;
    bool anyTexcoord = false;
    for (const Corner& corner : run.corners) {
        allNormals = allNormals && corner.normal >= 0;
        anyTexcoord = anyTexcoord || corner.texcoord >= 0;
    }
    std::unordered_map<int, int> seenPositions, seenNormals, seenTexcoords;
    int noTexcoord = -1;
    for (std::size_t first = 0; first < run.corners.size(); first += 3) {
        const Corner* triangle = &run.corners[first];
        if (!allNormals) {
            const R::Float3 n = flatNormal(&positions[3 * triangle[0].position],
                                           &positions[3 * triangle[1].position],
                                           &positions[3 * triangle[2].position]);
            mesh.normals.insert(mesh.normals.end(), n.begin(), n.end());
        }
        for (int c = 0; c < 3; ++c) {
            const Corner& corner = triangle[c];
            mesh.indices.push_back(
                localIndex(seenPositions, corner.position, positions, 3, mesh.positions));
            mesh.indices.push_back(
                allNormals ? localIndex(seenNormals, corner.normal, normals, 3, mesh.normals)
                           : static_cast<int>(first / 3));
            if (!anyTexcoord) {
                continue;
            }
            if (corner.texcoord >= 0) {
                mesh.indices.push_back(
                    localIndex(seenTexcoords, corner.texcoord, texcoords, 2, mesh.texcoords));
                continue;
            }
            if (noTexcoord < 0) {
                noTexcoord = static_cast<int>(mesh.texcoords.size() / 2);
                mesh.texcoords.insert(mesh.texcoords.end(), {0.0f, 0.0f});
            }
            mesh.indices.push_back(noTexcoord);
        }
    }
    mesh.fitBounds();
    return mesh;
}

int KVTObjImporter::countMeshes() const {
    int count = 0;
    for (const Run& run : runs) {
        count += run.corners.empty() ? 0 : 1;
    }
    return count;
}

int KVTObjImporter::countTriangles() const {
    std::size_t corners = 0;
    for (const Run& run : runs) {
        corners += run.corners.size();
    }
    return static_cast<int>(corners / 3);
}

void KVTObjImporter::write(KVTSceneWriter& writer, const std::string& rootName) const {
    const std::vector<std::string> files = textureFiles();
    for (std::size_t i = 0; i < files.size(); ++i) {
        writer.addTexture(R::Texture{static_cast<int>(i), files[i], files[i]});
    }
    for (std::size_t i = 0; i < materials.size(); ++i) {
        const Material& m = materials[i];
        const auto texture = std::find(files.begin(), files.end(), m.texture);
        writer.addMaterial(R::Material{
            static_cast<int>(i), m.name, R::Float4{m.ambient[0], m.ambient[1], m.ambient[2], 1},
            R::Float4{m.diffuse[0], m.diffuse[1], m.diffuse[2], 1},
            texture != files.end() ? static_cast<int>(texture - files.begin()) : -1});
    }
    R::Node root;
    root.id = 0;
    root.name = rootName;
    writer.addNode(root);
    int meshId = 0;
    for (const Run& run : runs) {
        if (run.corners.empty()) {
            continue;
        }
        R::Mesh mesh = makeMesh(run, meshId);
        mesh.name = !run.group.empty()      ? run.group
                    : !run.material.empty() ? run.material
                                            : "mesh" + std::to_string(meshId);
        R::Node node;
        node.id = meshId + 1;
        node.type = R::MESH_NODE;
        node.ref = meshId;
        node.parent = root.id;
        node.name = mesh.name;
        node.tail = materialId(run.material);
        writer.addMesh(std::move(mesh));
        writer.addNode(node);
        ++meshId;
    }
    for (std::size_t i = 0; i < lights.size(); ++i) {
        const int pointLight = 0;
        writer.addLight(R::Light{static_cast<int>(i), pointLight, {1, 1, 1}});
        R::Node node;
        node.id = meshId + 1 + static_cast<int>(i);
        node.type = R::LIGHT_NODE;
        node.ref = static_cast<int>(i);
        node.name = "Light" + std::to_string(i);
        std::copy(lights[i].begin(), lights[i].end(), node.matrix.begin() + 12);
        writer.addNode(node);
    }
}
