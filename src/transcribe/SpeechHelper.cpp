#include "transcribe/SpeechHelper.h"

#include "base/AppError.h"
#include "base/HelperProgram.h"
#include "base/WakeUp.h"
#include "transcribe/SpeechFile.h"
#include "transcribe/SpeechProtocol.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vantry {

namespace {

[[noreturn]] void fail(const std::string& what, int error)
{
    throw AppError(what + ": " + std::generic_category().message(error));
}

/// A running helper. Destroying it ends it.
class Process {
public:
    Process(const std::filesystem::path& program, const std::vector<std::string>& command, const SpeechFile& speech);
    ~Process();

    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// What it says.
    int output() const { return m_output.number(); }

    /// Waits until it has ended; true when it did so as it should.
    bool endsWell();

private:
    void start(const std::filesystem::path& program, const std::vector<std::string>& command, int input, int output);

    Descriptor m_output;
    pid_t m_process = -1;
};

Process::Process(const std::filesystem::path& program, const std::vector<std::string>& command, const SpeechFile& speech)
{
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        fail("No connection to the speech recogniser", errno);
    m_output = Descriptor(ends[0]);
    const Descriptor theirs(ends[1]);
    start(program, command, speech.descriptor(), theirs.number());
}

/// With a group of its own, so that a key pressed for us does not reach it, and without the words of its engines.
void Process::start(const std::filesystem::path& program, const std::vector<std::string>& command, int input, int output)
{
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_adddup2(&files, input, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&files, output, STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_RDWR, 0);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK);
    std::vector<std::string> words{ program.string() };
    words.insert(words.end(), command.begin(), command.end());
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (auto& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    const int error = posix_spawn(&m_process, arguments[0], &files, &attributes, arguments.data(), environ);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
    if (error)
        fail("The speech recogniser could not be started", error);
}

Process::~Process()
{
    if (m_process <= 0)
        return;
    kill(m_process, SIGKILL);
    endsWell();
}

bool Process::endsWell()
{
    int status = 0;
    while (waitpid(m_process, &status, 0) < 0 && errno == EINTR) { }
    m_process = -1;
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
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
    Process process(program, command, speech);
    LineReader reader(process.output());
    std::vector<Line> lines;
    const auto take = [&](std::string_view text) {
        const SpeechNews news = decodeSpeechNews(text);
        if (const auto* failure = std::get_if<SpeechFailure>(&news))
            throw AppError(failure->text);
        lines.push_back(std::get<Line>(news));
    };
    for (;;) {
        std::array<pollfd, 2> files{ { { process.output(), POLLIN, 0 }, { wakeUp.descriptor(), POLLIN, 0 } } };
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
