#include "platform/WebBrowsers.h"

#include <QStandardPaths>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

namespace vantry {

namespace fs = std::filesystem;

namespace {

using Entry = std::map<std::string, std::string>;

std::string lower(std::string text)
{
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

/// The keys of the file's main group.
Entry readEntry(const std::string& file)
{
    Entry entry;
    std::ifstream lines(file);
    bool isMain = false;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with('['))
            isMain = line == "[Desktop Entry]";
        else if (const auto equals = line.find('='); isMain && equals != std::string::npos)
            entry.emplace(line.substr(0, equals), line.substr(equals + 1));
    }
    return entry;
}

/// The program of a command line, which may begin with variables for it.
std::string programOf(const std::string& command)
{
    std::istringstream words(command);
    for (std::string word; words >> word;) {
        std::erase(word, '"');
        if (word != "env" && word.find('=') == std::string::npos)
            return fs::path(word).filename().string();
    }
    return {};
}

} // namespace

WebBrowsers::WebBrowsers()
{
    for (const QString& folder : QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation)) {
        std::error_code unreadable;
        for (const auto& file : fs::recursive_directory_iterator(folder.toStdString(), unreadable))
            if (file.path().extension() == ".desktop")
                add(file.path().string());
    }
}

void WebBrowsers::add(const std::string& file)
{
    const Entry entry = readEntry(file);
    const auto value = [&](const char* key) {
        const auto found = entry.find(key);
        return found == entry.end() ? std::string() : found->second;
    };
    std::string types = ";";
    types += value("MimeType");
    types += ';';
    if (types.find(";x-scheme-handler/https;") == std::string::npos || value("Hidden") == "true")
        return;
    for (const auto& name : { value("StartupWMClass"), fs::path(file).stem().string(), programOf(value("Exec")) })
        if (!name.empty())
            m_names.insert(lower(name));
}

bool WebBrowsers::own(const ClientWindow& window) const
{
    const auto isKnown = [this](const std::string& name) { return m_names.contains(lower(name)); };
    if (std::ranges::any_of(window.classes, isKnown))
        return true;
    std::error_code unreadable;
    const auto program = fs::read_symlink("/proc/" + std::to_string(window.process) + "/exe", unreadable);
    return !unreadable && isKnown(program.filename().string());
}

} // namespace vantry
