#pragma once

#include "transcribe/SpeechHelper.h"

#include <fstream>

namespace vantry::test {

/// A program of the shell, written to `program`, in the helper's place.
inline SpeechHelper shellHelper(const std::filesystem::path& program, const std::string& script)
{
    std::ofstream(program) << "#!/bin/sh\n" << script << "\n";
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    return { .program = program };
}

} // namespace vantry::test
