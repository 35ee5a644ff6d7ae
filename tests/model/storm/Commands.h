#pragma once

#include "model/AppModel.h"

#include <filesystem>
#include <random>

namespace vantry::storm {

/// What somebody does who does not think: each number is a command that follows from the seed, and a while in which the model
/// works.
class Commands {
public:
    Commands(AppModel& model, unsigned seed);

    /// May end the process without a word.
    void run(int number);

private:
    void record();
    void stop();
    void steer();
    void change();
    void look();
    void open();
    void exportVideo();
    void transcribe();
    void choose();
    void endProcess();

    int pick(int count) { return std::uniform_int_distribution(0, count - 1)(m_random); }
    double time();
    void wait(int longest);

    AppModel& m_model;
    const unsigned m_seed;
    std::mt19937 m_random;
};

/// Throws std::runtime_error, with what does not fit together: in the model, or in the folders of its projects.
void check(AppModel& model);
void checkFolders(const std::filesystem::path& root);

} // namespace vantry::storm
