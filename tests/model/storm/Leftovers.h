#pragma once

#include <filesystem>
#include <fstream>
#include <map>
#include <string>

namespace vantry::storm {

/// The threads and open files of this process.
class Leftovers {
public:
    Leftovers()
    {
        namespace fs = std::filesystem;
        std::error_code gone;
        for (const auto& thread : fs::directory_iterator("/proc/self/task")) {
            std::string name;
            std::getline(std::ifstream(thread.path() / "comm"), name);
            ++m_counts["thread " + name];
        }
        for (const auto& file : fs::directory_iterator("/proc/self/fd")) {
            std::string target = fs::read_symlink(file.path(), gone).string();
            ++m_counts["file " + target.substr(0, target.find(':'))];
        }
    }

    bool isWithin(const Leftovers& others) const { return beyond(others).empty(); }

    /// What there is more of.
    std::string beyond(const Leftovers& others) const
    {
        std::string list;
        for (const auto& [name, count] : m_counts) {
            const auto other = others.m_counts.find(name);
            if (other == others.m_counts.end() || other->second < count)
                list += name + " (" + std::to_string(count) + ") ";
        }
        return list;
    }

private:
    std::map<std::string, int> m_counts;
};

} // namespace vantry::storm
