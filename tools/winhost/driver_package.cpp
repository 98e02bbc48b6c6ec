#include "tools/winhost/driver_package.h"

#include <algorithm>
#include <map>

namespace kx20::winhost {

namespace {

std::string Lower(std::string s) {
    for (char& c : s)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return s;
}

std::string Trim(std::string_view s) {
    const auto first = s.find_first_not_of(" \t\r");
    if (first == std::string_view::npos)
        return {};
    const auto last = s.find_last_not_of(" \t\r");
    return std::string(s.substr(first, last - first + 1));
}

struct Line {
    std::string key, value;  // value empty and key the whole line when there is no '='
};

// Sections by lower-cased name; each line with its comment removed (outside quotes).
using Sections = std::map<std::string, std::vector<Line>>;

Sections Parse(std::string_view text) {
    Sections sections;
    std::vector<Line>* current = nullptr;
    std::size_t start = 0;
    while (start < text.size()) {
        std::size_t end = text.find('\n', start);
        if (end == std::string_view::npos)
            end = text.size();
        std::string_view raw = text.substr(start, end - start);
        start = end + 1;
        std::string line;
        bool quoted = false;
        for (char c : raw) {
            if (c == '"')
                quoted = !quoted;
            if (c == ';' && !quoted)
                break;
            line += c;
        }
        line = Trim(line);
        if (line.empty())
            continue;
        if (line.front() == '[') {
            const auto close = line.find(']');
            current = close == std::string::npos ? nullptr
                                                   : &sections[Lower(Trim(line.substr(1, close - 1)))];
            continue;
        }
        if (!current)
            continue;
        const auto eq = line.find('=');
        if (eq == std::string::npos)
            current->push_back({line, {}});
        else
            current->push_back({Trim(line.substr(0, eq)), Trim(line.substr(eq + 1))});
    }
    return sections;
}

// Replaces %name% from [Strings] and removes the quotes of a quoted value.
std::string Expand(const std::string& value, const Sections& sections) {
    std::map<std::string, std::string> strings;
    if (auto it = sections.find("strings"); it != sections.end())
        for (const Line& l : it->second)
            strings[Lower(l.key)] = l.value;
    std::string out;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] == '%') {
            const auto close = value.find('%', i + 1);
            if (close != std::string::npos) {
                auto it = strings.find(Lower(value.substr(i + 1, close - i - 1)));
                if (it != strings.end()) {
                    out += it->second;
                    i = close;
                    continue;
                }
            }
        }
        out += value[i];
    }
    out.erase(std::remove(out.begin(), out.end(), '"'), out.end());
    return Trim(out);
}

std::vector<std::string> Fields(const std::string& value) {
    std::vector<std::string> fields;
    std::size_t start = 0;
    while (start <= value.size()) {
        auto comma = value.find(',', start);
        if (comma == std::string::npos)
            comma = value.size();
        fields.push_back(Trim(std::string_view(value).substr(start, comma - start)));
        start = comma + 1;
    }
    return fields;
}

const std::vector<Line>* Find(const Sections& sections, const std::string& name) {
    auto it = sections.find(Lower(name));
    return it == sections.end() ? nullptr : &it->second;
}

std::string Value(const std::vector<Line>& section, const char* key, const Sections& sections) {
    for (const Line& l : section)
        if (Lower(l.key) == Lower(key))
            return Expand(l.value, sections);
    return {};
}

bool Fail(std::string* error, std::string text) {
    if (error)
        *error = std::move(text);
    return false;
}

}  // namespace

bool ReadDriverInf(std::string_view text, DriverPackage* package, std::string* error) {
    if (text.size() > kMaxInfBytes)
        return Fail(error, "the INF is larger than " + std::to_string(kMaxInfBytes) + " bytes");
    if (text.size() >= 3 && text.substr(0, 3) == "\xEF\xBB\xBF")
        text.remove_prefix(3);
    if (text.find('\0') != std::string_view::npos)
        return Fail(error, "the INF is not ASCII or UTF-8 text");
    const Sections sections = Parse(text);
    const auto* version = Find(sections, "Version");
    if (!version || Lower(Value(*version, "Class", sections)) != "printer")
        return Fail(error, "the INF has no [Version] section of class Printer");
    const auto* manufacturers = Find(sections, "Manufacturer");
    if (!manufacturers || manufacturers->empty())
        return Fail(error, "the INF has no [Manufacturer] section");
    // "%Name%=Section,NTamd64": the models are in Section.NTamd64 (or Section undecorated).
    const auto target = Fields(manufacturers->front().value.empty() ? manufacturers->front().key
                                                                     : manufacturers->front().value);
    const std::vector<Line>* models = nullptr;
    for (std::size_t i = 1; i < target.size() && !models; ++i)
        if (Lower(target[i]) == "ntamd64")
            models = Find(sections, target[0] + "." + target[i]);
    if (!models)
        models = Find(sections, target[0]);
    if (!models || models->empty() || models->front().value.empty())
        return Fail(error, "the INF's manufacturer names no models section with a model");
    DriverPackage p;
    p.model = Expand(models->front().key, sections);
    const std::string installName = Fields(models->front().value)[0];
    const auto* install = Find(sections, installName);
    if (!install)
        return Fail(error, "the INF has no install section [" + installName + "]");
    p.driverFile = Value(*install, "DriverFile", sections);
    p.configFile = Value(*install, "ConfigFile", sections);
    p.dataFile = Value(*install, "DataFile", sections);
    p.helpFile = Value(*install, "HelpFile", sections);
    p.defaultDataType = Value(*install, "DefaultDataType", sections);
    for (const std::string& copy : Fields(Value(*install, "CopyFiles", sections))) {
        if (copy.empty())
            continue;
        if (copy.front() == '@') {  // a single file
            p.files.push_back(copy.substr(1));
            continue;
        }
        const auto* list = Find(sections, copy);
        if (!list)
            return Fail(error, "the INF has no file list [" + copy + "]");
        for (const Line& l : *list)
            p.files.push_back(Fields(Expand(l.key, sections))[0]);
    }
    // Files are copied into the spooler's driver folder by these names: bare names only.
    for (const std::string& f : p.files)
        if (f.empty() || f == "." || f == ".." || f.find_first_of("\\/:") != std::string::npos)
            return Fail(error, "the INF copies \"" + f + "\", which is not a bare file name");
    auto listed = [&p](const std::string& file) {
        return std::any_of(p.files.begin(), p.files.end(),
                           [&](const std::string& f) { return Lower(f) == Lower(file); });
    };
    if (p.configFile.empty() || p.dataFile.empty())
        return Fail(error, "the install section [" + installName + "] names no ConfigFile or DataFile");
    for (const std::string* f : {&p.driverFile, &p.configFile, &p.dataFile, &p.helpFile})
        if (!f->empty() && !listed(*f))
            return Fail(error, "the install section names " + *f + ", which its CopyFiles do not copy");
    *package = std::move(p);
    return true;
}

}  // namespace kx20::winhost
