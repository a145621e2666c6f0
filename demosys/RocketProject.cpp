#include "RocketProject.h"

#include "TrackInterpolate.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <map>
#include <set>
#include <sstream>

namespace rocket {

namespace {

const int EditorStep = 0;
const int EditorLinear = 1;
const int EditorSmooth = 2;
const int EditorRamp = 3;
const unsigned long LastRow = 0x7FFFFFFF;

// A parsed element: its name, attributes and child elements; text between elements is
// of no use to a project and is dropped.
struct Element {
    std::string name;
    std::map<std::string, std::string> attributes;
    std::vector<Element> children;
    int line = 0;
};

// Reads the subset of XML a project file uses: a prolog, comments, elements with quoted
// attributes and the five predefined entities.
class XmlReader {
public:
    XmlReader(const std::string& xml, const std::string& file) : text(xml), fileName(file) {}

    bool readDocument(Element& root) {
        if (!skipMisc()) {
            return false;
        }
        if (!at("<")) {
            return fail("expected the root element");
        }
        if (!readElement(root) || !skipMisc()) {
            return false;
        }
        return atEnd() || fail("text after the root element");
    }

    std::string error;

private:
    bool fail(const std::string& reason) {
        error = fileName + ":" + std::to_string(line) + ": " + reason;
        return false;
    }

    bool atEnd() const { return position >= text.size(); }
    bool at(const char* prefix) const {
        return text.compare(position, std::strlen(prefix), prefix) == 0;
    }

    void advance(size_t count) {
        for (; count > 0 && !atEnd(); --count, ++position) {
            line += text[position] == '\n' ? 1 : 0;
        }
    }

    void skipSpace() {
        while (!atEnd() && std::isspace(static_cast<unsigned char>(text[position]))) {
            advance(1);
        }
    }

    // Moves past the next occurrence of end; false when the text ends first.
    bool skipPast(const char* end, const char* what) {
        const size_t found = text.find(end, position);
        if (found == std::string::npos) {
            return fail(std::string(what) + " is never closed");
        }
        advance(found + std::strlen(end) - position);
        return true;
    }

    // Whitespace, comments, processing instructions and a document type, in any order.
    bool skipMisc() {
        for (skipSpace(); !atEnd(); skipSpace()) {
            if (at("<!--")) {
                if (!skipPast("-->", "a comment")) {
                    return false;
                }
            } else if (at("<?") || at("<!DOCTYPE")) {
                if (!skipPast(">", "a declaration")) {
                    return false;
                }
            } else {
                return true;
            }
        }
        return true;
    }

    static bool nameCharacter(char c) {
        return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '-' || c == '.' ||
               c == ':';
    }

    bool readName(std::string& name) {
        const size_t start = position;
        while (!atEnd() && nameCharacter(text[position])) {
            advance(1);
        }
        name = text.substr(start, position - start);
        return !name.empty() || fail("expected a name");
    }

    bool decode(const std::string& raw, std::string& out) {
        static const std::pair<const char*, char> entities[] = {
            {"&amp;", '&'}, {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&apos;", '\''}};
        out.clear();
        for (size_t i = 0; i < raw.size(); ++i) {
            if (raw[i] == '<') {
                return fail("'<' inside an attribute value");
            }
            if (raw[i] != '&') {
                out += raw[i];
                continue;
            }
            bool known = false;
            for (const auto& [entity, character] : entities) {
                if (raw.compare(i, std::strlen(entity), entity) == 0) {
                    out += character;
                    i += std::strlen(entity) - 1;
                    known = true;
                    break;
                }
            }
            if (!known) {
                return fail("unknown entity in '" + raw + "'");
            }
        }
        return true;
    }

    bool readAttribute(Element& element) {
        std::string name;
        if (!readName(name)) {
            return false;
        }
        skipSpace();
        if (!at("=")) {
            return fail("attribute '" + name + "' has no value");
        }
        advance(1);
        skipSpace();
        const char quote = atEnd() ? '\0' : text[position];
        if (quote != '"' && quote != '\'') {
            return fail("the value of '" + name + "' is not quoted");
        }
        const size_t end = text.find(quote, position + 1);
        if (end == std::string::npos) {
            return fail("the value of '" + name + "' is never closed");
        }
        std::string value;
        if (!decode(text.substr(position + 1, end - position - 1), value)) {
            return false;
        }
        if (!element.attributes.emplace(name, value).second) {
            return fail("attribute '" + name + "' is given twice");
        }
        advance(end + 1 - position);
        return true;
    }

    // At '<': the start tag, its attributes, and its content up to the matching end tag.
    bool readElement(Element& element) {
        element.line = line;
        advance(1);
        if (!readName(element.name)) {
            return false;
        }
        for (skipSpace(); !at(">") && !at("/>"); skipSpace()) {
            if (atEnd()) {
                return fail("element '" + element.name + "' ends with the text");
            }
            if (!readAttribute(element)) {
                return false;
            }
        }
        if (at("/>")) {
            advance(2);
            return true;
        }
        advance(1);
        return readContent(element);
    }

    bool readContent(Element& element) {
        while (true) {
            const size_t next = text.find('<', position);
            if (next == std::string::npos) {
                advance(text.size() - position);
                return fail("element '" + element.name + "' is never closed");
            }
            advance(next - position);
            if (at("</")) {
                return readEndTag(element);
            }
            if (at("<!--") || at("<?")) {
                if (!skipPast(at("<?") ? "?>" : "-->", "a comment")) {
                    return false;
                }
                continue;
            }
            element.children.emplace_back();
            if (!readElement(element.children.back())) {
                return false;
            }
        }
    }

    bool readEndTag(const Element& element) {
        advance(2);
        std::string name;
        if (!readName(name)) {
            return false;
        }
        if (name != element.name) {
            return fail("'</" + name + ">' closes '" + element.name + "' opened at line " +
                        std::to_string(element.line));
        }
        skipSpace();
        if (!at(">")) {
            return fail("'</" + name + "' is not closed by '>'");
        }
        advance(1);
        return true;
    }

    const std::string& text;
    std::string fileName;
    size_t position = 0;
    int line = 1;
};

// Turns the elements of a project into its tracks and bookmarks.
class ProjectReader {
public:
    explicit ProjectReader(const std::string& file) : fileName(file) {}

    bool read(const Element& root, Project& out) {
        if (root.name != "sync") {
            return fail(root, "the root element is '" + root.name + "', not 'sync'");
        }
        if (root.attributes.count("rows") != 0 && !row(root, "rows", out.rows)) {
            return false;
        }
        for (const Element& part : root.children) {
            for (const Element& child : part.children) {
                if (part.name == "tracks" && child.name == "track" && !readTrack(child, out)) {
                    return false;
                }
                if (part.name == "bookmarks" && child.name == "bookmark") {
                    out.bookmarks.push_back(0);
                    if (!row(child, "row", out.bookmarks.back())) {
                        return false;
                    }
                }
            }
        }
        return true;
    }

    std::string error;

private:
    bool fail(const Element& element, const std::string& reason) {
        error = fileName + ":" + std::to_string(element.line) + ": " + reason;
        return false;
    }

    bool attribute(const Element& element, const std::string& name, std::string& value) {
        const auto found = element.attributes.find(name);
        if (found == element.attributes.end()) {
            return fail(element, "'" + element.name + "' has no '" + name + "'");
        }
        value = found->second;
        return true;
    }

    bool number(const Element& element, const std::string& name, long lowest, long highest,
                long& out) {
        std::string text;
        if (!attribute(element, name, text)) {
            return false;
        }
        char* end = nullptr;
        errno = 0;
        out = std::strtol(text.c_str(), &end, 10);
        if (text.empty() || *end != '\0' || errno != 0 || out < lowest || out > highest) {
            return fail(element, "'" + name + "' is '" + text + "', not a whole number from " +
                                     std::to_string(lowest) + " to " + std::to_string(highest));
        }
        return true;
    }

    bool row(const Element& element, const std::string& name, unsigned int& out) {
        long value = 0;
        if (!number(element, name, 0, LastRow, value)) {
            return false;
        }
        out = static_cast<unsigned int>(value);
        return true;
    }

    bool readTrack(const Element& element, Project& out) {
        Track track;
        if (!attribute(element, "name", track.name)) {
            return false;
        }
        for (const Element& child : element.children) {
            if (child.name != "key") {
                continue;
            }
            Key key{};
            long keyType = 0;
            std::string valueText;
            if (!row(child, "row", key.row) || !attribute(child, "value", valueText) ||
                !number(child, "interpolation", 0, KeyTypeCount - 1, keyType)) {
                return false;
            }
            char* end = nullptr;
            key.value = std::strtof(valueText.c_str(), &end);
            if (valueText.empty() || *end != '\0' || !std::isfinite(key.value)) {
                return fail(child, "'value' is '" + valueText + "', not a number");
            }
            key.keyType = static_cast<int>(keyType);
            track.keys.push_back(key);
        }
        out.tracks.push_back(std::move(track));
        return true;
    }

    std::string fileName;
};

std::string escape(const std::string& text) {
    std::string out;
    for (char c : text) {
        switch (c) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        default:
            out += c;
        }
    }
    return out;
}

// 1 from each interval's start, 0 from the row after its stop, and 0 before the first.
Track activeTrack(const synctext::Effect& effect) {
    std::map<unsigned int, float> values;
    for (const synctext::Interval& interval : effect.intervals) {
        values[interval.start] = 1.0f;
        values.emplace(interval.stop + 1, 0.0f);
    }
    values.emplace(0, 0.0f);
    Track track{effect.name + ":" + ActiveTrack, {}};
    for (const auto& [row, value] : values) {
        track.keys.push_back(Key{row, value, EditorStep});
    }
    return track;
}

synctext::Effect& effectNamed(synctext::Document& document, const std::string& name) {
    for (synctext::Effect& effect : document.effects) {
        if (effect.name == name) {
            return effect;
        }
    }
    document.effects.push_back(synctext::Effect{name, 0, {}, {}});
    return document.effects.back();
}

} // namespace

int editorKeyType(int interpolation) {
    switch (interpolation) {
    case TrackInterpolate::STEP:
        return EditorStep;
    case TrackInterpolate::RAMP:
        return EditorRamp;
    case TrackInterpolate::SMOOTH:
    case TrackInterpolate::EASE_IN:
    case TrackInterpolate::EASE_OUT:
        return EditorSmooth;
    default:
        return EditorLinear;
    }
}

int engineInterpolation(int keyType) {
    switch (keyType) {
    case EditorStep:
        return TrackInterpolate::STEP;
    case EditorLinear:
        return TrackInterpolate::LINEAR;
    case EditorSmooth:
        return TrackInterpolate::SMOOTH;
    case EditorRamp:
        return TrackInterpolate::RAMP;
    default:
        return -1;
    }
}

Project fromDocument(const synctext::Document& document) {
    Project project;
    std::set<unsigned int> changes;
    unsigned int lastRow = 0;
    for (const synctext::Effect& effect : document.effects) {
        project.tracks.push_back(activeTrack(effect));
        for (const synctext::Interval& interval : effect.intervals) {
            changes.insert({interval.start, interval.stop + 1});
            lastRow = std::max(lastRow, interval.stop + 1);
        }
        for (const synctext::Track& track : effect.tracks) {
            project.tracks.push_back(Track{effect.name + ":" + track.name, {}});
            for (const synctext::Keyframe& key : track.keyframes) {
                project.tracks.back().keys.push_back(
                    Key{key.row, key.value, editorKeyType(key.interpolation)});
                lastRow = std::max(lastRow, key.row);
            }
        }
    }
    project.rows = lastRow + 1;
    project.bookmarks.assign(changes.begin(), changes.end());
    return project;
}

bool toKeys(const Project& project, synctext::Document& keys, std::string& error) {
    for (const Track& track : project.tracks) {
        const size_t colon = track.name.find(':');
        if (colon == 0 || colon == std::string::npos || colon + 1 == track.name.size()) {
            error = "track '" + track.name + "' is not named 'instance:track'";
            return false;
        }
        const std::string parameter = track.name.substr(colon + 1);
        if (parameter == ActiveTrack) {
            continue;
        }
        // Keys in row order, the last of any row winning, as the editor shows them.
        std::map<unsigned int, synctext::Keyframe> rows;
        for (const Key& key : track.keys) {
            rows[key.row] =
                synctext::Keyframe{key.row, engineInterpolation(key.keyType), key.value};
        }
        synctext::Effect& effect = effectNamed(keys, track.name.substr(0, colon));
        effect.tracks.push_back(synctext::Track{parameter, {}});
        for (const auto& entry : rows) {
            effect.tracks.back().keyframes.push_back(entry.second);
        }
    }
    return true;
}

std::string writeXml(const Project& project) {
    std::ostringstream out;
    out << "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<sync rows=\"" << project.rows
        << "\">\n\t<tracks>\n";
    for (const Track& track : project.tracks) {
        out << "\t\t<track name=\"" << escape(track.name) << "\">\n";
        for (const Key& key : track.keys) {
            out << "\t\t\t<key row=\"" << key.row << "\" value=\""
                << synctext::formatValue(key.value) << "\" interpolation=\"" << key.keyType
                << "\"/>\n";
        }
        out << "\t\t</track>\n";
    }
    out << "\t</tracks>\n\t<bookmarks>\n";
    for (unsigned int row : project.bookmarks) {
        out << "\t\t<bookmark row=\"" << row << "\"/>\n";
    }
    out << "\t</bookmarks>\n</sync>\n";
    return out.str();
}

bool readXml(const std::string& text, const std::string& fileName, Project& out,
             std::string& error) {
    XmlReader xml(text, fileName);
    Element root;
    if (!xml.readDocument(root)) {
        error = xml.error;
        return false;
    }
    ProjectReader reader(fileName);
    if (!reader.read(root, out)) {
        error = reader.error;
        return false;
    }
    return true;
}

} // namespace rocket
