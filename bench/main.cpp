#include "Figure.h"

#include <algorithm>
#include <exception>
#include <iostream>

using namespace vantry::bench;

namespace {

bool run(const FigureGroup& group)
{
    try {
        group.measure();
        return true;
    } catch (const std::exception& error) {
        std::cerr << group.name() << ": " << error.what() << '\n';
        return false;
    }
}

bool isWanted(const FigureGroup& group, const std::vector<std::string>& wanted)
{
    if (wanted.empty())
        return group.when() == FigureGroup::When::Always;
    return std::ranges::find(wanted, group.name()) != wanted.end();
}

/// The first name that no group has, or nothing.
std::string unknownName(const std::vector<std::string>& wanted, const std::vector<FigureGroup>& groups)
{
    for (const auto& name : wanted)
        if (std::ranges::find(groups, name, &FigureGroup::name) == groups.end())
            return name;
    return {};
}

} // namespace

/// vantry_bench [GROUP...]: measures every group but those that take long, or those named. Exit status 1 when one failed, 2 when a
/// name is unknown.
int main(int count, char** arguments)
{
    const std::vector<std::string> wanted(arguments + 1, arguments + count);
    const auto groups = FigureGroup::all();
    if (const auto unknown = unknownName(wanted, groups); !unknown.empty()) {
        std::cerr << "There is no group \"" << unknown << "\". Groups:";
        for (const auto& group : groups)
            std::cerr << ' ' << group.name();
        std::cerr << '\n';
        return 2;
    }
    bool allRan = true;
    for (const auto& group : groups)
        if (isWanted(group, wanted))
            allRan = run(group) && allRan;
    return allRan ? 0 : 1;
}
