#include "PeakMemory.h"

#include "transcribe/Transcriber.h"

#include <QCoreApplication>

#include <cstdlib>
#include <exception>
#include <iostream>

#include <sys/resource.h>

/// vantry_transcribe_once MOVIE: transcribes it in a process of its own and prints the peak memory of this process and of its
/// helper together, in kilobytes.
int main(int count, char** arguments)
{
    using namespace vantry;
    const QCoreApplication application(count, arguments);
    if (count != 2)
        return 2;
    try {
        Transcriber({ .models = "/nowhere", .source = "http://127.0.0.1:1/" }).transcribe(arguments[1], "en-US");
        rusage helper{};
        getrusage(RUSAGE_CHILDREN, &helper);
        std::cout << bench::peakKilobytes() + helper.ru_maxrss << '\n';
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
