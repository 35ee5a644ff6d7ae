#include "transcribe/SpeechHelper.h"

#include "base/AppError.h"
#include "base/Descriptor.h"
#include "base/HelperProcess.h"
#include "base/HelperProgram.h"
#include "base/WakeUp.h"
#include "transcribe/SpeechFile.h"
#include "transcribe/SpeechProtocol.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace vantry {

namespace {

[[noreturn]] void fail(const std::string& what, int error)
{
    throw AppError(what + ": " + std::generic_category().message(error));
}

/// What the helper writes to the second end comes out of the first.
std::array<Descriptor, 2> makePipe()
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        fail("No connection to the speech recogniser", errno);
    return { Descriptor(ends[0]), Descriptor(ends[1]) };
}

/// Whole lines of what comes in pieces.
class LineReader {
public:
    explicit LineReader(int file)
        : m_file(file)
    {
    }

    /// Reads what is there, and gives each line that is complete to `take`. False at the end.
    template <typename Take>
    bool readSome(Take take)
    {
        std::array<char, 4096> bytes{};
        const auto count = ::read(m_file, bytes.data(), bytes.size());
        if (count < 0 && errno != EINTR)
            fail("The speech recogniser cannot be heard", errno);
        m_pending.append(bytes.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        for (auto end = m_pending.find('\n'); end != std::string::npos; end = m_pending.find('\n')) {
            take(std::string_view(m_pending).substr(0, end));
            m_pending.erase(0, end + 1);
        }
        return count != 0;
    }

private:
    const int m_file;
    std::string m_pending;
};

} // namespace

std::filesystem::path SpeechHelper::defaultProgram()
{
    return helperProgram("vantry-speech", VANTRY_SPEECH_PROGRAM);
}

std::optional<std::vector<Line>> SpeechHelper::recognise(
    const std::vector<std::string>& command, const SpeechFile& speech, const std::stop_token& cancel) const
{
    const WakeUp wakeUp;
    const std::stop_callback onCancel(cancel, [&] { wakeUp.call(); });
    auto [output, theirs] = makePipe();
    HelperProcess process({ .title = "The speech recogniser",
        .program = program,
        .arguments = command,
        .input = speech.descriptor(),
        .output = theirs.number() });
    theirs.close(); // So that its end is the only one, and ours tells when it has gone.
    LineReader reader(output.number());
    std::vector<Line> lines;
    const auto take = [&](std::string_view text) {
        const SpeechNews news = decodeSpeechNews(text);
        if (const auto* failure = std::get_if<SpeechFailure>(&news))
            throw AppError(failure->text);
        lines.push_back(std::get<Line>(news));
    };
    for (;;) {
        std::array<pollfd, 2> files{ { { output.number(), POLLIN, 0 }, { wakeUp.descriptor(), POLLIN, 0 } } };
        const int ready = poll(files.data(), files.size(), static_cast<int>(patience.count()));
        if (cancel.stop_requested())
            return std::nullopt;
        if (ready == 0)
            throw AppError("The speech recogniser hangs");
        if (files[0].revents != 0 && !reader.readSome(take))
            break;
    }
    if (!process.endsWell())
        throw AppError("The speech recogniser ended unexpectedly");
    return lines;
}

} // namespace vantry
