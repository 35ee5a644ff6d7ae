#include "speechhelper/SphinxRecogniser.h"
#include "speechhelper/WhisperRecogniser.h"
#include "transcribe/SpeechProtocol.h"

#include "base/AppError.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

using namespace vantry;

namespace {

void say(const SpeechNews& news)
{
    std::fputs(encode(news).c_str(), stdout);
    std::fflush(stdout);
}

std::unique_ptr<Recogniser> makeRecogniser(const std::vector<std::string>& command)
{
    if (command.size() == 1 && command[0] == "sphinx")
        return std::make_unique<SphinxRecogniser>();
    if (command.size() == 3 && command[0] == "whisper")
        return std::make_unique<WhisperRecogniser>(command[1], command[2]);
    throw AppError("There is no such speech recogniser");
}

} // namespace

/// vantry-speech sphinx | whisper MODEL LANGUAGE: recognises the speech in the file that is its standard input. A program of its
/// own, because the recognisers end the process that they are in when they fail.
int main(int argc, char** argv)
{
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    // A recording may go on beside it.
    constexpr int polite = 10;
    setpriority(PRIO_PROCESS, 0, polite);
    try {
        const SpeechFile speech{ Descriptor(STDIN_FILENO) };
        makeRecogniser({ argv + 1, argv + argc })->recognise(speech, findPhrases(speech), say);
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        say(SpeechFailure{ error.what() });
        return EXIT_FAILURE;
    }
}
