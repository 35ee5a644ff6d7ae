#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vantry::bench {

/// Prints one measured figure as the line `name value unit`. The part of the name before its dot is the figure's group.
void report(std::string_view name, double value, std::string_view unit);

/// A group of figures that are measured together. A bench file measures in a function and registers it with one object at file
/// scope:
///
///     static void measure() { report("writer.dropped_pct", 0.2, "%"); }
///     static const FigureGroup group("writer", measure);
///
/// The function reports each figure as soon as it has it; what it throws is printed and fails the run, the other groups still run.
/// Several files may register under one name: they run one after the other.
class FigureGroup {
public:
    using Measure = void (*)();

    /// Whether it is measured with all others, or only when it is named: it takes long.
    enum class When { Always, Named };

    FigureGroup(std::string name, Measure measure, When when = When::Always);

    const std::string& name() const { return m_name; }
    When when() const { return m_when; }
    void measure() const { m_measure(); }

    /// Every registered group, by name.
    static std::vector<FigureGroup> all();

private:
    std::string m_name;
    Measure m_measure;
    When m_when;
};

} // namespace vantry::bench
