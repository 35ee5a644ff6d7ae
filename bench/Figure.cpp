#include "Figure.h"

#include <algorithm>
#include <cstdio>

namespace vantry::bench {

namespace {

// A function's static, for objects at file scope are made in no particular order.
std::vector<FigureGroup>& registered()
{
    static std::vector<FigureGroup> groups;
    return groups;
}

} // namespace

void report(std::string_view name, double value, std::string_view unit)
{
    std::printf("%.*s %.6g %.*s\n", static_cast<int>(name.size()), name.data(), value, static_cast<int>(unit.size()), unit.data());
    std::fflush(stdout);
}

FigureGroup::FigureGroup(std::string name, Measure measure, When when)
    : m_name(std::move(name))
    , m_measure(measure)
    , m_when(when)
{
    registered().push_back(*this);
}

std::vector<FigureGroup> FigureGroup::all()
{
    auto groups = registered();
    std::ranges::stable_sort(groups, {}, &FigureGroup::name);
    return groups;
}

} // namespace vantry::bench
