#include "DroppedPercent.h"
#include "WarmRecorder.h"

#include <cstdlib>
#include <exception>
#include <iostream>

/// vantry_record_once FILE SECONDS MICROPHONE [CAMERA]: one recording in a process of its own, so that nobody else's work counts as
/// its own. Prints the per cent of a core that it took and, of the track that fared worst, the per cent of samples that were
/// dropped.
int main(int count, char** arguments)
{
    using namespace vantry;
    if (count != 4 && count != 5)
        return 2;
    try {
        bench::WarmRecorder recorder(arguments[3], count == 5 ? std::optional<std::string>(arguments[4]) : std::nullopt);
        const auto take = recorder.record(arguments[1], std::chrono::seconds(std::atoi(arguments[2])));
        std::cout << take.processorPercent << ' ' << bench::droppedPercent(take.outcome) << '\n';
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
