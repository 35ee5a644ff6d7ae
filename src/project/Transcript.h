#pragma once

#include "project/Project.h"

#include <string>
#include <vector>

namespace vantry {

/// What is said in the kept parts of all clips, in project time and timeline order.
std::vector<Line> transcript(const Project&);

/// Lines as text: one for each, "[1:05] Welcome back".
std::string transcriptText(const std::vector<Line>&);

/// All of a project's.
std::string transcriptText(const Project&);

} // namespace vantry
