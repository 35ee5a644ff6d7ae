#include "Figure.h"
#include "ProcessorTime.h"

#include "media/Sound.h"
#include "support/Command.h"
#include "support/TemporaryFolder.h"
#include "support/TestMovie.h"
#include "support/Voice.h"
#include "transcribe/Transcriber.h"

#include <QCoreApplication>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <numeric>
#include <sstream>
#include <string>
#include <vector>

namespace vantry::bench {

namespace {

const std::vector<std::string> sentences{
    "Welcome to my channel.",
    "Today we build a screen recorder.",
    "Open the settings window and choose your microphone.",
    "Press the red button to start the recording.",
    "In this video I will show you how to write a small program.",
    "The next step is to install the package.",
    "If something goes wrong, stop and go back ten seconds.",
    "Now we can export the movie and share it with our friends.",
    "Thank you for watching, and see you next time.",
    "First of all, let us look at the list of files in the folder.",
};

const std::vector<std::string> voices{ "slt", "rms", "awb" };
constexpr double pause = 1;

/// From its first sound to its last.
std::vector<float> trimmed(std::vector<float> sound)
{
    const auto isLoud = [](float sample) { return std::abs(sample) > 0.01F; };
    sound.erase(std::ranges::find_if(sound.rbegin(), sound.rend(), isLoud).base(), sound.end());
    sound.erase(sound.begin(), std::ranges::find_if(sound, isLoud));
    return sound;
}

double lengthOf(const std::vector<float>& sound)
{
    return static_cast<double>(sound.size()) / sampleRate;
}

/// Each sentence, a pause before it, and when it begins.
struct Speech {
    std::vector<float> sound;
    std::vector<double> starts;
    double spoken = 0;
};

Speech speechOf(const std::string& voice)
{
    Speech speech;
    for (const auto& sentence : sentences) {
        const auto said = trimmed(test::spoken(sentence, voice));
        speech.sound = test::joined({ speech.sound, test::quiet(pause) });
        speech.starts.push_back(lengthOf(speech.sound));
        speech.spoken += lengthOf(said);
        speech.sound = test::joined({ speech.sound, said });
    }
    speech.sound = test::joined({ speech.sound, test::quiet(pause) });
    return speech;
}

std::vector<std::string> wordsOf(const std::string& text)
{
    std::string plain = text;
    std::erase_if(plain, [](char c) { return c == ',' || c == '.'; });
    std::ranges::transform(plain, plain.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    std::istringstream stream(plain);
    std::vector<std::string> words;
    for (std::string word; stream >> word;)
        words.push_back(word);
    return words;
}

/// The fewest words that must be added, left out or replaced.
std::size_t errorsBetween(const std::vector<std::string>& said, const std::vector<std::string>& heard)
{
    std::vector<std::size_t> row(heard.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (std::size_t i = 0; i < said.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t k = 0; k < heard.size(); ++k) {
            const std::size_t replaced = diagonal + (said[i] == heard[k] ? 0 : 1);
            diagonal = row[k + 1];
            row[k + 1] = std::min({ replaced, row[k] + 1, row[k + 1] + 1 });
        }
    }
    return row.back();
}

/// How far the nearest line begins from each start, in milliseconds.
std::vector<double> startErrors(const std::vector<double>& starts, const std::vector<Line>& lines)
{
    std::vector<double> errors;
    for (const double start : starts) {
        double nearest = INFINITY;
        for (const Line& line : lines)
            nearest = std::min(nearest, std::abs(line.start - start));
        errors.push_back(nearest * 1000);
    }
    return errors;
}

double percentile(std::vector<double> values, double fraction)
{
    std::ranges::sort(values);
    return values[static_cast<std::size_t>(fraction * static_cast<double>(values.size() - 1))];
}

std::string textOf(const std::vector<Line>& lines)
{
    std::string text;
    for (const Line& line : lines)
        text += line.text + ' ';
    return text;
}

/// In a sentence's stretch of time: until the next one begins.
std::string textBetween(const std::vector<Line>& lines, double start, double end)
{
    std::vector<Line> within;
    std::ranges::copy_if(lines, std::back_inserter(within), [&](const Line& line) {
        const double middle = (line.start + line.end) / 2;
        return middle >= start && middle < end;
    });
    return textOf(within);
}

/// English without a model: the engine of the distribution.
std::vector<Line> transcribed(const std::filesystem::path& movie, const test::TemporaryFolder& folder)
{
    Transcriber transcriber({ .models = folder / "models", .source = "http://127.0.0.1:1/" });
    return *transcriber.transcribe(movie, "en-US");
}

void measureRecognition(const test::TemporaryFolder& folder)
{
    double spoken = 0;
    double work = 0;
    std::size_t words = 0;
    std::size_t errors = 0;
    std::vector<double> startError;
    for (const auto& voice : voices) {
        const Speech speech = speechOf(voice);
        const auto movie = folder / (voice + ".mov");
        test::writeTestMovie(
            movie, { .duration = lengthOf(speech.sound), .screen = { 64, 48 }, .audio = true, .voice = speech.sound });
        const double before = processorSeconds() + processorSeconds(RUSAGE_CHILDREN);
        const auto lines = transcribed(movie, folder);
        work += processorSeconds() + processorSeconds(RUSAGE_CHILDREN) - before;
        spoken += speech.spoken;
        for (std::size_t i = 0; i < sentences.size(); ++i) {
            const double end = i + 1 < sentences.size() ? speech.starts[i + 1] : INFINITY;
            const auto said = wordsOf(sentences[i]);
            words += said.size();
            errors += errorsBetween(said, wordsOf(textBetween(lines, speech.starts[i] - pause / 2, end - pause / 2)));
        }
        std::ranges::copy(startErrors(speech.starts, lines), std::back_inserter(startError));
    }
    report("speech.realtime_x", spoken / work, "x");
    report("speech.wer_pct", 100.0 * static_cast<double>(errors) / static_cast<double>(words), "%");
    report("speech.start_error_ms", percentile(startError, 0.95), "ms");
}

/// An hour, of which three minutes are spoken: what is not takes no time.
void measureMemory(const test::TemporaryFolder& folder)
{
    const std::string voice = folder / (voices.front() + ".mov");
    const std::string hour = folder / "hour.mov";
    test::runCommand("ffmpeg -v error -stream_loop -1 -i " + voice
        + " -map 0:a -af \"volume=enable='gte(mod(t,600),30)':volume=0\" -t 3600 -c:a aac -b:a 96k " + hour);
    report("speech.peak_mb", std::stod(test::runCommand(BENCH_TOOLS "/vantry_transcribe_once " + hour)) / 1024, "MB");
}

void measure()
{
    int count = 1;
    char name[] = "bench";
    char* arguments[] = { name, nullptr };
    const QCoreApplication application(count, arguments);
    const test::TemporaryFolder folder;
    measureRecognition(folder);
    measureMemory(folder);
}

const FigureGroup group("speech", measure);

} // namespace

} // namespace vantry::bench
