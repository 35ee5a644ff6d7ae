#pragma once

#include "base/Descriptor.h"
#include "media/Sound.h"

#include <span>
#include <vector>

namespace vantry {

/// One channel of sound at `sampleRate` as 32-bit floats on the disk: as much as an hour does not belong into memory. The file, in
/// the Core Audio format, stands in the folder for temporary files but has no name there, so that nothing is left of it whatever
/// ends the processes that have it open. One thread at a time. Errors are AppErrors.
class SpeechFile {
public:
    /// An empty one.
    SpeechFile();

    /// One that another process has made, and hands over open.
    explicit SpeechFile(Descriptor file);

    /// What was never written is silence.
    void write(SampleCount at, std::span<const float> samples);

    /// The samples from `from` until before `to`, fewer at the end.
    std::vector<float> read(SampleCount from, SampleCount to) const;

    SampleCount length() const;

    int descriptor() const { return m_file.number(); }

private:
    Descriptor m_file;
};

} // namespace vantry
